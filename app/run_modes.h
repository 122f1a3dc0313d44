#pragma once

#include <string>
#include <vector>

#include "platform/Platform.h"

namespace velto {

enum class RunMode { interactive, maintenance, reset };

/// Chosen by the process arguments, the program's path included. An argument counts when it equals
/// "--maintenance" or "--reset", wherever it stands; maintenance wins over reset.
RunMode runModeOf(const std::vector<std::string>& arguments);

/// True when one of the arguments is "--debug-log": the log then tells payloads whole, and its
/// lines have any length. In every run mode.
bool wantsDetailedLog(const std::vector<std::string>& arguments);

/// The headless full reset: the maintenance agent and all local data go; settings stay. Returns the
/// exit status.
int runReset(Platform& platform);

/// The headless maintenance pass. Returns the exit status.
int runMaintenance(Platform& platform);

/// The windowed application. Returns the exit status.
int runInteractive(Platform& platform, const std::vector<std::string>& arguments);

}  // namespace velto
