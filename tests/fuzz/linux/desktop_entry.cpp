#include "platform/DesktopEntry.h"

#include <sys/stat.h>

#include <algorithm>
#include <string>

#include <nlohmann/json.hpp>

#include "fuzz/engine/Target.h"
#include "fuzz/engine/linux/ConfinedMachine.h"
#include "fuzz/engine/sections.h"
#include "platform/values/text.h"
#include "uninstall/desktop_applications.h"

namespace velto::fuzz {
namespace {

/// A home with one program, and an entry that says whatever it likes of it.
void judge(std::string_view input) {
    ConfinedMachine world(HomeLayout::Kind::freedesktop);
    const std::string home = world.home.path();
    world.keep(".ssh/id_ed25519", "key");
    world.keep(".local/share/flatpak/app/org.example.Foobar/current", "a Flatpak");
    for (const char* program :
         {"Applications/foobar-1.2/bin/foobar", "Applications/Foo.AppImage"}) {
        world.keep(program, "#!/bin/sh\n");
        ::chmod(world.home.path(program).c_str(), 0755);
    }
    const std::string relative = ".local/share/applications/org.example.Foobar.desktop";
    world.home.text(relative, withHome(std::string(input), home));
    const auto entry = readDesktopEntry(world.home.path(relative));
    if (!entry) return;
    require(entry->executable.starts_with('/'), "a program has an absolute path");
    for (const std::string* text : {&entry->name, &entry->version, &entry->flatpak})
        require(isValidUtf8(*text), "texts are UTF-8");

    const HomeLayout& layout = world.layout;
    desktopIconFile(*world.platform.files, layout.desktopEntries, entry->icon);
    for (const DesktopApplication& application : desktopApplications(world.platform)) {
        const AppEntry& shown = application.entry;
        require(!toJson(shown).dump().empty(), "it can be shown");
        const std::string removed = standardizedPath(shown.path);
        require(!removed.empty() && removed != "/" && !isAtOrBelow(home, removed),
                "removing it removes no home");
        require(std::ranges::find(layout.neverRemoved, removed) == layout.neverRemoved.end(),
                "nor what belongs to all");
        require(!isAtOrBelow(removed, home + "/.ssh"), "nor keys");
    }
    world.prove();
}

const Registration registered("desktop_entry", judge);

}  // namespace
}  // namespace velto::fuzz
