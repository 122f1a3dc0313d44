#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace velto {

/// What any program that adds up a tree has to ask of the system, and nothing more: openat and
/// getdents64 for every folder, statx for every folder, regular file and link, on a number of
/// threads. No names are kept but those of folders that wait, nothing is sorted, classified or
/// checked.
struct FloorWalk {
    std::int64_t files = 0;
    std::int64_t bytes = 0;    // allocated, of those files
    std::int64_t folders = 0;  // but the first one
    std::int64_t total = 0;    // allocated, of everything

    static FloorWalk run(const std::string& folder, std::size_t threads);
};

}  // namespace velto
