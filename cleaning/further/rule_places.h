#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cleaning/further/FurtherRule.h"
#include "platform/Platform.h"

namespace velto {

/// The paths that a place of a rule stands for in this home: absolute, each component "*" by the
/// names that are there. Empty when the home lacks the folder that the place begins with. Nothing
/// is listed behind the privacy gate unless the program has access.
std::vector<std::string> resolvedPlaces(const Platform& platform, std::string_view place,
                                        bool hasAccess);

/// What a rule may take of this home without looking inside: its places that lie in the home and
/// outside the program's own folders and the caches that are never taken, with one of the rule's
std::vector<std::string> placesOf(const Platform& platform, const FurtherRule& rule,
                                  bool hasAccess);

/// One of the rule's markers stands in `folder`; true for a rule without markers.
bool hasMarker(const FileManager& files, const FurtherRule& rule, const std::string& folder);

/// All that the rule wants to be inside stands in `folder`.
bool holdsAll(const FileManager& files, const FurtherRule& rule, const std::string& folder);

}  // namespace velto
