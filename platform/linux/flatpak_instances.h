#pragma once

#include <map>
#include <string>

namespace velto {

/// The Flatpaks that run, by the process namespace of their sandbox (as the link /proc/<pid>/ns/pid
/// reads), from what Flatpak notes of each in `runtime`/.flatpak (flatpak-ps(1) reads the same).
/// For sessions without units; empty where none runs. Looks into no sandbox, so that none can hold
/// it up. Never throws.
std::map<std::string, std::string> flatpaksByNamespace(const std::string& proc,
                                                       const std::string& runtime);

/// The process namespace of a process, from its folder below /proc; empty when it cannot be seen.
std::string processNamespace(const std::string& folder);

}  // namespace velto
