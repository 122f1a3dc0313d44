#pragma once

#include <string>

namespace velto {

/// Whether the block device of these numbers is a disk with moving heads, or made of any such one
/// (partitions, device mapper, RAID), as the kernel says below `sys` (usually "/sys"). False for a
/// disk that does not say it, and for a virtual one whose driver says it of every disk.
bool diskRotates(const std::string& sys, unsigned major, unsigned minor);

}  // namespace velto
