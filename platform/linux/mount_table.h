#pragma once

#include <string_view>

namespace velto {

/// Whether the kernel's table of mounts (the text of /proc/PID/mountinfo, see
/// proc_pid_mountinfo(5)) has one at an absolute path or below it. Yes also for a line that cannot
/// be read.
bool holdsMount(std::string_view table, std::string_view path);

}  // namespace velto
