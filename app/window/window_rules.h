#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ApplicationShell.h"

/// Every decision about the window that does not need a window: both systems carry these out.
namespace velto::window {

inline constexpr int initialWidth = 1180;  // points
inline constexpr int initialHeight = 760;
inline constexpr int minimumWidth = 720;  // half of a small screen
inline constexpr int minimumHeight = 480;

struct Colour {
    int red, green, blue;  // sRGB, 0 to 255, opaque
};

/// The colour behind the page.
Colour backgroundColour(Appearance appearance);

// The drag region: a transparent strip over the top of the page that moves the window.
inline constexpr std::string_view dragRegionIdentifier = "velto-drag-region";
inline constexpr double dragRegionHeight = 52;   // points
inline constexpr double dragRegionLeading = 78;  // clear of the three window buttons
struct WidthRule {
    enum class Relation { equal, atLeast, atMost };
    Relation relation;
    bool relativeToContainer;  // constant is added to the container's width, else absolute
    double constant;
    float priority;  // 1000 is required
};
/// The rules of the region's width, as layout constraints.
inline constexpr std::array<WidthRule, 3> dragRegionWidthRules{{
    {WidthRule::Relation::equal, true, -598, 750},
    {WidthRule::Relation::atLeast, false, 140, 999},
    {WidthRule::Relation::atMost, true, -200, 999},
}};
/// What those rules come to for a container of that width (never negative). Between the two rules
/// of priority 999 the lower bound wins where both cannot hold.
double dragRegionWidth(double containerWidth);

/// What a double click on the drag region does to the window.
enum class TitleAction { zoom, minimise, nothing };
/// By the user's setting for title bars (AppleActionOnDoubleClick); unset, or of another system's
/// making, it is zoom.
TitleAction titleDoubleClickAction(std::string_view setting);

/// True for the developer entries of the web view's context menu, in either language. Broad on
/// purpose: "inspect", "inspeccionar" or "element" anywhere in the lower-cased title.
bool isDeveloperMenuItem(std::string_view title);

/// True for the entries of a Mac's web view that lead to other pages, or load this one again, by
/// their identifiers: in this window there is one page, and it stays.
bool isBrowsingMenuItem(std::string_view identifier);

inline constexpr std::string_view resourceBundleName = "Velto_velto_app.bundle";
/// The first existing folder of that name inside the candidates, tried in order; nothing when none
/// exists. `exists` answers whether a path exists.
std::optional<std::string> findResourceBundle(
    const std::vector<std::string>& parents, const std::function<bool(const std::string&)>& exists);
/// The log's line for a message of the page that cannot be told as JSON and is dropped.
inline constexpr const char* messageWithoutJson =
    "Velto ▶ mensaje de la página descartado: contiene un valor que JSON no tiene";
inline constexpr std::string_view missingBundleMessage =
    "unable to find bundle named Velto_velto_app";

/// The script that tells the page which system it runs on ("linux" or "macos"); it runs before the
/// page's own.
std::string platformScript(std::string_view system);

}  // namespace velto::window
