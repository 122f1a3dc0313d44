#pragma once

#include <set>
#include <string>

namespace velto {

enum class TreeDetail {
    usual,
    /// Also the owner, the times of everything to the nanosecond, extended attributes and access
    /// lists. Reading leaves the access times as they are.
    everything,
};

/// All of what stands at a path as one text: kinds, contents, permissions, modification times of
/// files, where links lead, folder by folder. Two texts are equal when nothing is missing, changed
/// or added. Empty when nothing is there.
std::string treeText(const std::string& path, TreeDetail detail = TreeDetail::usual);

/// The paths of everything below a folder that is not a folder, relative to it; and empty folders.
std::set<std::string> leavesBelow(const std::string& folder);

}  // namespace velto
