#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cleaning/VeltoTrashService.h"
#include "cleaning/selection_check.h"

namespace velto::events {

/// The script of the event that answers "checkSelection", under the request's own number.
std::string selection(const SelectionCheck& check, std::int64_t request);

/// Of items that went back under another name than their own; nothing when there are none.
std::optional<std::string> putBack(const std::vector<VeltoTrashService::Returned>& returned);

}  // namespace velto::events
