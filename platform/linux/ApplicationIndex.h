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
    std::string script;           // what an interpreter is told to run, absolute; else empty
    std::string flatpak, snap;    // what it is called there; empty when it is none
};

/// Tells to which installed application a process belongs. Immutable.
class ApplicationIndex {
public:
    explicit ApplicationIndex(const std::vector<ListedApplication>& applications);

    /// By the unit under which the desktop started the process (its control group, as
    /// /proc/<pid>/cgroup has it), else by what it runs, be it a script; null when it is no
    /// application's. The result lives as long as the index.
    const RunningApp* find(std::string_view controlGroup, const std::string& executable,
                           const std::string& script = {}) const;

    /// By the id of its desktop entry, and by that of the Flatpak; null when it is not installed.
    const RunningApp* identified(const std::string& identifier) const;
    const RunningApp* ofFlatpak(const std::string& identifier) const;

private:
    using Table = std::unordered_map<std::string, const RunningApp*>;

    static const RunningApp* lookUp(const Table& table, const std::string& key);
    const RunningApp* byFolder(const std::string& executable) const;

    std::vector<std::unique_ptr<const RunningApp>> applications_;
    Table identifiers_, flatpaks_, snaps_;
    Table executables_;  // and scripts
    Table folders_;      // all that runs from here is its
};

}  // namespace velto
