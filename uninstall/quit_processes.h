#pragma once

#include <vector>

#include "platform/Platform.h"

namespace velto {

/// Asks the processes of an application to quit, waits two seconds at most and ends the rest by
/// force. What keeps the sandbox of a Flatpak is not asked: its end would be the end of those in
/// it, unasked. Returns how many there were. Blocking; never throws.
int quitProcesses(const Platform& platform, const std::vector<RunningApplication>& processes);

}  // namespace velto
