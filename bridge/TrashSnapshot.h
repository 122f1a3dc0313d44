#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cleaning/TrashRecords.h"

namespace velto {

/// The trash as a piece of work has left it.
struct TrashSnapshot {
    std::vector<TrashItem> items;               // oldest first
    std::map<std::string, std::int64_t> bytes;  // by id, where that is known
};

/// Shared by all who keep it: there may be very many items.
using SharedTrash = std::shared_ptr<const TrashSnapshot>;

}  // namespace velto
