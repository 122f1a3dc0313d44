#include <algorithm>
#include <optional>
#include <string>

#include "fuzz/engine/Target.h"
#include "fuzz/engine/sections.h"
#include "platform/HomeLayout.h"
#include "platform/values/text.h"
#include "uninstall/removal_rules.h"

namespace velto::fuzz {
namespace {

constexpr const char* home = "/home/ana";

/// Whatever "user-dirs.dirs" and the environment say, the layout is one to stand on. A section
/// before the first name is the file's text, each other one is a variable.
void judge(std::string_view input) {
    const auto sections = sectionsIn(input);
    const auto variable = [&](const std::string& name) -> std::optional<std::string> {
        const std::string value = sectionOf(sections, name);
        return value.empty() ? std::nullopt : std::optional(value);
    };
    const HomeLayout layout = HomeLayout::freedesktop(home, variable, sectionOf(sections, ""));
    for (const std::string* role :
         {&layout.pictures, &layout.movies, &layout.music, &layout.downloads, &layout.documents,
          &layout.desktop, &layout.caches, &layout.applicationSupport, &layout.dataFolder,
          &layout.trashFolder, &layout.systemTrash, &layout.agentsFolder}) {
        require(role->empty() || role->starts_with('/'), "a role is an absolute path");
        require(role->size() < 2 || !role->ends_with('/'), "without a slash at its end");
        require(*role != home, "the home itself is no role");
    }
    require(layout.walkRoots.front() == home, "the walk begins with the home");
    require(isAtOrBelow(layout.trashFolder, layout.dataFolder), "the trash is the program's");
    for (const char* path : {"", "/.ssh", "/.ssh/id_ed25519", "/.gnupg/private-keys-v1.d"}) {
        require(!isSafeToRemove(std::string(home) + path, "", layout), "keys are never removed");
    }
    require(!isSafeToRemove("/", "", layout) && !isSafeToRemove("/home", "", layout),
            "nor is what holds the home");
}

const Registration registered("user_folders", judge);

}  // namespace
}  // namespace velto::fuzz
