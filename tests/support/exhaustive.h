#pragma once

#include <cstdlib>

namespace velto {

/// True when the tests are to go through everything, not only through a share (the environment
/// names VELTO_EXHAUSTIVE; ./dev check does).
inline bool isExhaustive() { return std::getenv("VELTO_EXHAUSTIVE") != nullptr; }

}  // namespace velto
