#pragma once

#include <string>

namespace velto {

/// The file that a process runs, from its folder below /proc: absolute, also when an update has
/// taken it away since. Empty for a process that has ended, that is the kernel's, or that is none
/// of ours to look at. Never throws.
std::string executableOfProcess(const std::string& folder);

/// The AppImage that `executable` was unpacked from: it mounts itself to run and leaves its own
/// path in the environment. Empty for everything else. Never throws.
std::string appImageOfProcess(const std::string& folder, const std::string& executable);

/// The script that the process runs when `executable` is an interpreter: absolute, as its command
/// line has it (links and whether it is there are not looked at). Empty for everything else. Never
/// throws.
std::string scriptOfProcess(const std::string& folder, const std::string& executable);

}  // namespace velto
