#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/posix/Descriptor.h"

namespace velto {

/// Opens a file that anyone may have put there, links followed. Nothing, with `errno` set, for
/// whatever is no regular file: opening a pipe never waits for its other end, a terminal never
/// becomes the program's own, and a file that somebody holds a lease on is not waited for.
std::optional<Descriptor> openForeignFile(const std::string& path);

/// The whole content of such a file; nothing when it cannot be read, or when it is longer than
/// `mostBytes`, of which no byte more is ever read. Only a file system that does not answer can
/// make it wait. Safe from every thread; never throws.
std::optional<std::string> readForeignFile(const std::string& path, std::size_t mostBytes);

}  // namespace velto
