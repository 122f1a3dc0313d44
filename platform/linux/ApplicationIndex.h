#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/ProcessTable.h"

namespace velto {

/// An installed application as its desktop entry shows it.
struct ListedApplication {
    std::string identifier;  // of the entry: its file's name without ".desktop"
    std::string name;
    std::string path;             // of the entry
    std::string executable;       // absolute, links resolved; empty when it is not known
    bool startsAnything = false;  // `executable` only runs something else: a shell, a launcher
};

/// Tells to which installed application a process belongs. Immutable.
class ApplicationIndex {
public:
    explicit ApplicationIndex(const std::vector<ListedApplication>& applications);

    /// By the unit under which the desktop started the process (its control group, as
    /// /proc/<pid>/cgroup has it), else by what it runs; null when it is no application's. The
    /// result lives as long as the index.
    const RunningApp* find(std::string_view controlGroup, const std::string& executable) const;

private:
    const RunningApp* byFolder(const std::string& executable) const;

    std::vector<std::unique_ptr<const RunningApp>> applications_;
    std::unordered_map<std::string, const RunningApp*> identifiers_;
    std::unordered_map<std::string, const RunningApp*> executables_;
    std::unordered_map<std::string, const RunningApp*> folders_;  // all that runs from here is its
};

/// The identifier of the application in the name of the unit that a desktop started it under (the
/// systemd project's rules for desktop environments: "app-<launcher>-<identifier>-<number>.scope"
/// and "app-<launcher>-<identifier>@<number>.service"; Snap's
/// "snap.<name>.<command>-<number>.scope" gives "<name>_<command>", as its entry is called). Empty
/// when the text holds no such unit.
std::string applicationInControlGroup(std::string_view controlGroup);

}  // namespace velto
