#pragma once

#include <optional>
#include <string>

#include "analysis/growth/GrowthAnswers.h"

/// The scripts of the events about what has grown. Pure, like those of events.h.
namespace velto::events {

/// `asked` is the moment in the form of the intent ("last", "week", "month" or seconds). Without an
/// answer there is nothing to compare with: nothing is available, and every list is empty.
std::string growth(const GrowthSince& asked, const std::optional<GrowthAnswers::Answer>& answer,
                   const std::string& home);

/// Without an answer no folder is told.
std::string folderGrowth(const std::string& path,
                         const std::optional<GrowthAnswers::Inside>& inside);

}  // namespace velto::events
