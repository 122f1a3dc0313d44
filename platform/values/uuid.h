#pragma once

#include <string>

namespace velto {

/// A new random UUID (RFC 4122, version 4): 36 characters, upper-case hexadecimal with dashes.
std::string newUUID();

}  // namespace velto
