#pragma once

#include <set>
#include <string>

namespace velto {

/// All of what stands at a path as one text: kinds, contents, permissions, modification times of
/// files, where links lead, folder by folder. Two texts are equal when nothing is missing, changed
/// or added. Empty when nothing is there.
std::string treeText(const std::string& path);

/// The paths of everything below a folder that is not a folder, relative to it; and empty folders.
std::set<std::string> leavesBelow(const std::string& folder);

}  // namespace velto
