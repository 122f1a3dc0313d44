#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "platform/FileManager.h"
#include "platform/RunningApplications.h"

namespace velto {

struct DesktopApplication;

/// Tells to which of the applications of a Linux home a process belongs: by the sandbox of a
/// Flatpak or Snap in which it runs, by its program or script, by where these lie, and by the unit
/// under which the desktop has started it. Immutable.
class ProcessOwners {
public:
    struct Owner {
        std::string bid;
        std::string path;  // as the application's entry has it
    };
    struct Match {
        const Owner* owner = nullptr;  // lives as long as this object; null: nobody's
        /// Nothing but this application runs like that. Only then may the process be ended.
        bool isCertain = false;
    };

    ProcessOwners() = default;
    explicit ProcessOwners(const std::vector<DesktopApplication>& applications);

    /// Reads nothing from the disk.
    Match of(const RunningApplication& process) const;
    /// Looks also where links in the path of a script lead. May wait for the disk.
    Match of(const RunningApplication& process, const FileManager& files) const;

private:
    struct Known {
        std::size_t owner = 0;
        bool isCertain = true;
    };
    using Table = std::unordered_map<std::string, Known>;

    void addProgram(const DesktopApplication& application, std::size_t owner);
    void addFolder(const std::string& folder, Known known);
    Match lookUp(const Table& table, const std::string& key) const;
    Match ofProgram(const std::string& program) const;
    Match inFolder(const std::string& program) const;
    Match find(const RunningApplication& process, const std::string& resolvedScript) const;

    std::vector<Owner> owners_;
    Table entries_, flatpaks_, snaps_;
    Table programs_;  // executables and scripts
    Table folders_;   // whose programs are all of one application; one of several is nobody's
};

}  // namespace velto
