#include "app/window/graphics.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace velto::window {
namespace {

/// The kernel gives a node of this name to what can compute pictures; a device that can only show
/// them (an emulated screen, for one) has a "card" alone.
constexpr std::string_view renderNode = "renderD";

/// What the drivers take for a yes.
constexpr std::array<std::string_view, 4> yes{"1", "true", "y", "yes"};

}  // namespace

bool processorDraws(const GraphicsSigns& signs) {
    if (std::find(yes.begin(), yes.end(), signs.software) != yes.end()) return true;
    if (signs.otherDevice) return false;
    return std::none_of(signs.directNodes.begin(), signs.directNodes.end(),
                        [](const std::string& name) { return name.starts_with(renderNode); });
}

}  // namespace velto::window
