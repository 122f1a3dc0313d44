#include "platform/privacy_gate.h"

#include <algorithm>

#include "platform/values/text.h"

namespace velto {

bool isBehindPrivacyGate(const HomeLayout& layout, std::string_view path) {
    if (!layout.hasPrivacyGate) return false;
    return std::ranges::any_of(
               layout.guardedPaths,
               [&](const std::string& guarded) { return isAtOrBelow(path, guarded); }) ||
           std::ranges::any_of(layout.protectedLocations, [&](const NamedLocation& location) {
               return isAtOrBelow(path, location.path);
           });
}

}  // namespace velto
