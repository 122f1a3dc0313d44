#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "cleaning/SpaceSharing.h"

/// The exact script of each event about sharing space. Pure.
namespace velto::events {

/// What sharing would bring, by the id of the group; `copies` as `SpaceSharing::foretell` gives.
struct Sharable {
    std::string kept;
    std::vector<SpaceSharing::Copy> copies;
};
std::string sharable(std::int64_t request, const std::map<std::string, Sharable>& groups);

/// How far sharing is: copies done of all, and bytes compared of the one under way.
std::string sharing(std::size_t done, std::size_t of, std::int64_t bytes);

struct Shared {
    std::size_t files = 0;   // that share their space now
    std::int64_t bytes = 0;  // that have come back
    bool isExact = true;     // false: at most those bytes
    bool isStopped = false;  // by the user
    std::vector<SpaceSharing::Copy> stays;
};
std::string shared(const Shared& result);

}  // namespace velto::events
