#pragma once

#include <string>
#include <vector>

#include "cleaning/further/FurtherDiscovery.h"

/// The exact script of the event about what the rules of `rules/` have found. Pure.
namespace velto::events {

/// `asking`: tools are still being asked how much they keep; the same comes again without.
std::string furtherCleanables(const std::vector<FurtherGroup>& groups, bool asking);

}  // namespace velto::events
