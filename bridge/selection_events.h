#pragma once

#include <cstdint>
#include <string>

#include "cleaning/selection_check.h"

namespace velto::events {

/// The script of the event that answers "checkSelection", under the request's own number.
std::string selection(const SelectionCheck& check, std::int64_t request);

}  // namespace velto::events
