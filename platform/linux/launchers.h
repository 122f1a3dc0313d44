#pragma once

#include <string_view>

namespace velto {

/// Programs by the name of their file.

/// One that runs what its first argument names: a script.
bool isInterpreter(std::string_view program);

/// One that stands for whatever it is told to run: an interpreter, or what starts other programs
/// (`env`, `wine`, `flatpak`, what enters a container).
bool isLauncher(std::string_view program);

}  // namespace velto
