#pragma once

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "../UninstallWorld.h"
#include "uninstall/Leftovers.h"

namespace velto {

/// A made Linux home; the folders of the system's entries lie on a made disk.
struct DesktopWorld : UninstallWorld {
    DesktopWorld() : UninstallWorld(buildVolume()) {
        std::filesystem::remove_all(home.path("Library"));
        HomeLayout layout = HomeLayout::freedesktop(
            home.path(), [](const std::string&) { return std::nullopt; }, "");
        layout.desktopEntries = {{entryOrigin::user, home.path(".local/share/applications")},
                                 {entryOrigin::userFlatpak,
                                  home.path(".local/share/flatpak/exports/share/applications")},
                                 {entryOrigin::flatpak, disk.path("flatpak/share/applications")},
                                 {entryOrigin::system, disk.path("usr/share/applications")},
                                 {entryOrigin::snap, disk.path("snapd/desktop/applications")}};
        machine.platform.layout = layout;
    }

    std::string program(const std::string& path) {
        home.text(path, "#!/bin/sh\n");
        chmod(home.path(path).c_str(), 0755);
        return home.path(path);
    }
    void entry(const std::string& file, const std::string& name, const std::string& command,
               const std::string& more = "") {
        put(file,
            "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + command + "\n" + more);
    }
    void userEntry(const std::string& id, const std::string& name, const std::string& command,
                   const std::string& more = "") {
        entry(home.path(".local/share/applications/" + id + ".desktop"), name, command, more);
    }
    void systemEntry(const std::string& id, const std::string& name, const std::string& command,
                     const std::string& more = "") {
        entry(disk.path("usr/share/applications/" + id + ".desktop"), name, command, more);
    }
    /// An entry of the user that starts the program at a path, spaces and all.
    void userProgram(const std::string& id, const std::string& name, const std::string& path) {
        userEntry(id, name, "\"" + path + "\"");
    }
    /// The application of that name; nothing where there is none.
    std::optional<AppEntry> find(const std::string& name) {
        for (AppEntry& one : apps.listApps()) {
            if (one.name == name) return one;
        }
        return std::nullopt;
    }
    /// The same; the test fails where there is none.
    AppEntry listed(const std::string& name) {
        if (auto found = find(name)) return *found;
        ADD_FAILURE() << name << " is not listed";
        return {};
    }

    /// What an analysis lists beside the application.
    std::vector<std::string> leftoversOf(const AppEntry& application,
                                         const std::string& conf = "") const {
        std::vector<std::string> paths;
        const auto analysis = Leftovers::analyze(machine.platform, apps, application, true);
        for (const auto& group : analysis["groups"]) {
            for (const auto& item : group["items"]) {
                if (item["id"] == "un-app") continue;
                if (!conf.empty() && item["conf"] != conf) continue;
                const std::string path = item["path"];
                paths.push_back(path.substr(home.path().size() + 1));
            }
        }
        return paths;
    }
};

}  // namespace velto
