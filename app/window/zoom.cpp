#include "app/window/zoom.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "app/window/window_rules.h"

namespace velto::window {
namespace {

constexpr const char* zoomKey = "velto.window.zoom";

/// At twice its size the page still works in a window of a small screen.
constexpr std::array<double, 8> steps{0.8, 0.9, ownSize, 1.1, 1.25, 1.5, 1.75, 2};

}  // namespace

double zoomedIn(double zoom) {
    const auto next = std::upper_bound(steps.begin(), steps.end(), zoom);
    return next == steps.end() ? steps.back() : *next;
}

double zoomedOut(double zoom) {
    const auto here = std::lower_bound(steps.begin(), steps.end(), zoom);
    return here == steps.begin() ? steps.front() : *(here - 1);
}

double keptZoom(const UserDefaults& defaults) {
    const auto value = defaults.value(zoomKey);
    const auto* const zoom = value ? std::get_if<double>(&*value) : nullptr;
    if (zoom == nullptr) return ownSize;
    const bool isStep = std::find(steps.begin(), steps.end(), *zoom) != steps.end();
    return isStep ? *zoom : ownSize;
}

void keepZoom(UserDefaults& defaults, double zoom) {
    if (zoom == ownSize) {
        defaults.remove(zoomKey);
    } else {
        defaults.setValue(zoomKey, zoom);
    }
}

std::string roomScript(double roomAtEnd, double zoom) {
    return fmt::format(
        R"js((function (style) {{
  style?.setProperty('--window-controls-end', '{}px');
  style?.setProperty('--strip', '{}px');
}})(document.documentElement?.style);)js",
        roomAtEnd / zoom, dragRegionHeight / zoom);
}

}  // namespace velto::window
