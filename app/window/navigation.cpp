#include "app/window/navigation.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "platform/values/text.h"

namespace velto::window {
namespace {

constexpr std::array<std::string_view, 3> browserSchemes{"http", "https", "mailto"};
constexpr std::size_t longestLoggedAddress = 120;  // bytes

bool equalIgnoringCase(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return lowerCasedAscii(a) == lowerCasedAscii(b); });
}

/// Engines hand addresses over with everything else escaped.
bool isPlainText(std::string_view address) {
    return std::all_of(address.begin(), address.end(),
                       [](char letter) { return letter > ' ' && letter < '\x7f'; });
}

bool isForBrowser(std::string_view address) {
    const std::size_t colon = address.find(':');
    if (colon == std::string_view::npos || !isPlainText(address)) return false;
    const std::string_view scheme = address.substr(0, colon);
    return std::any_of(browserSchemes.begin(), browserSchemes.end(),
                       [&](std::string_view known) { return equalIgnoringCase(scheme, known); });
}

}  // namespace

bool isPageAddress(std::string_view address) {
    return address.substr(0, address.find('#')) == pageAddress;
}

bool maySpeak(std::string_view documentAddress, bool isMainFrame) {
    return isMainFrame && isPageAddress(documentAddress);
}

NavigationPolicy policyFor(const Navigation& navigation) {
    if (navigation.kind == NavigationKind::linkFollowed) {
        return isForBrowser(navigation.address) ? NavigationPolicy::openInBrowser
                                                : NavigationPolicy::refuse;
    }
    const bool isOwn = navigation.kind == NavigationKind::other &&
                       navigation.target == NavigationTarget::mainFrame &&
                       isPageAddress(navigation.address);
    return isOwn ? NavigationPolicy::allow : NavigationPolicy::refuse;
}

bool mayBeShown(const NavigationResponse& response) {
    const std::string_view type = response.type.substr(0, response.type.find(';'));
    return response.isMainFrame && isPageAddress(response.address) &&
           equalIgnoringCase(type, "text/html");
}

std::string guardedScript(const std::string& script) {
    return fmt::format("if (document.URL.split(\"#\")[0] === \"{}\") {{\n{}\n}}", pageAddress,
                       script);
}

std::string refusalLine(std::string_view address) {
    std::string shown = singleLine(address.substr(0, longestLoggedAddress));
    if (address.size() > longestLoggedAddress) shown += "…";
    return "Velto ▶ navegación rechazada: " + shown;
}

}  // namespace velto::window
