#pragma once

#include <vector>

#include <nlohmann/json.hpp>

#include "cleaning/CleaningRules.h"

namespace velto {

/// The list that the page receives: one object per candidate, its keys the record's field names, in
/// the order given.
nlohmann::json toJson(const std::vector<Candidate>& candidates);

}  // namespace velto
