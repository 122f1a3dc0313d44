#pragma once

#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "analysis/DiskState.h"

namespace velto {

/// The record as JSON text with sorted keys; nothing when a number is not finite or a text is not
/// UTF-8.
std::optional<std::string> encode(const DiskState& state);

/// Strict: a missing or mistyped field throws nlohmann::json::exception. Unknown keys are ignored.
DiskState diskStateFromJson(const nlohmann::json& json);

}  // namespace velto
