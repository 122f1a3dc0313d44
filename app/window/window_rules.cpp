#include "app/window/window_rules.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/values/text.h"

namespace velto::window {
namespace {

constexpr Colour lightBackground{246, 246, 243};
constexpr Colour darkBackground{10, 10, 10};

constexpr std::array<std::string_view, 3> developerWords{"inspect", "inspeccionar", "element"};

constexpr std::array<std::string_view, 3> browsingItems{
    "WKMenuItemIdentifierGoBack", "WKMenuItemIdentifierGoForward", "WKMenuItemIdentifierReload"};

double bound(const WidthRule& rule, double containerWidth) {
    return rule.relativeToContainer ? containerWidth + rule.constant : rule.constant;
}

}  // namespace

Colour backgroundColour(Appearance appearance) {
    return appearance == Appearance::dark ? darkBackground : lightBackground;
}

double dragRegionWidth(double containerWidth) {
    double wanted = 0;
    double least = 0;
    double most = containerWidth;
    for (const WidthRule& rule : dragRegionWidthRules) {
        const double value = bound(rule, containerWidth);
        switch (rule.relation) {
            case WidthRule::Relation::equal:
                wanted = value;
                break;
            case WidthRule::Relation::atLeast:
                least = std::max(least, value);
                break;
            case WidthRule::Relation::atMost:
                most = std::min(most, value);
                break;
        }
    }
    // The lower bound comes last, so that it wins where both bounds cannot hold.
    return std::max(least, std::min(wanted, most));
}

TitleAction titleDoubleClickAction(std::string_view setting) {
    if (setting == "Minimize") return TitleAction::minimise;
    return setting == "None" ? TitleAction::nothing : TitleAction::zoom;
}

bool isDeveloperMenuItem(std::string_view title) {
    // The words that are looked for have letters of ASCII alone.
    const std::string lower = lowerCasedAscii(title);
    return std::any_of(developerWords.begin(), developerWords.end(), [&](std::string_view word) {
        return lower.find(word) != std::string::npos;
    });
}

bool isBrowsingMenuItem(std::string_view identifier) {
    return std::find(browsingItems.begin(), browsingItems.end(), identifier) != browsingItems.end();
}

std::optional<std::string> findResourceBundle(
    const std::vector<std::string>& parents,
    const std::function<bool(const std::string&)>& exists) {
    for (const std::string& parent : parents) {
        if (parent.empty()) continue;
        std::string path = parent;
        if (path.back() != '/') path += '/';
        path += resourceBundleName;
        if (exists(path)) return path;
    }
    return std::nullopt;
}

// At document start the root element normally stands already; should it not, it is waited for.
std::string platformScript(std::string_view system) {
    return fmt::format(R"js((function () {{
  function mark() {{
    if (!document.documentElement) return false;
    document.documentElement.dataset.platform = "{}";
    return true;
  }}
  if (mark()) return;
  new MutationObserver(function (changes, observer) {{
    if (mark()) observer.disconnect();
  }}).observe(document, {{ childList: true }});
}})();)js",
                       system);
}

}  // namespace velto::window
