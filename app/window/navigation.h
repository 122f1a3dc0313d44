#pragma once

#include <string>
#include <string_view>

/// Where the web view may go, and who in it may speak to the program. Both systems ask here and
/// carry out the answer.
namespace velto::window {

/// The page is served under a scheme of its own, which no other program and no network knows.
inline constexpr std::string_view pageScheme = "velto";
/// What every address of the page's files begins with; a file's name follows.
inline constexpr std::string_view pageOrigin = "velto://app/";
inline constexpr std::string_view pageAddress = "velto://app/index.html";

/// True for the page's own document, letter by letter; a fragment names a place inside it.
bool isPageAddress(std::string_view address);

/// Whether a script of this document may send intents: the page's own document, in the window's
/// main frame. Events are told to such a document only, too.
bool maySpeak(std::string_view documentAddress, bool isMainFrame);

enum class NavigationKind { linkFollowed, formSent, other };
enum class NavigationTarget { mainFrame, frameInside, newWindow, download };
enum class NavigationPolicy { allow, openInBrowser, refuse };

struct Navigation {
    NavigationKind kind = NavigationKind::other;
    NavigationTarget target = NavigationTarget::mainFrame;
    std::string_view address;
};

/// The page's own document and its reload are allowed. A followed link leaves the page where it is
/// and is the browser's when it leads to the web or is a mail address. Everything else is refused.
NavigationPolicy policyFor(const Navigation& navigation);

/// What has come back for a navigation.
struct NavigationResponse {
    std::string_view address;
    std::string_view type;  // media type, with or without parameters
    bool isMainFrame = false;
};

/// Only the page's own document is shown, as what it is.
bool mayBeShown(const NavigationResponse& response);

/// `script` so that it does nothing in a document that is not the page's own: for an engine that
/// cannot be told which documents a script belongs to.
std::string guardedScript(const std::string& script);

/// Rules for an engine that takes the lists of content blockers: nothing from the network, nothing
/// from the disk.
inline constexpr std::string_view blockingRules =
    R"([{"trigger":{"url-filter":"^http"},"action":{"type":"block"}},)"
    R"({"trigger":{"url-filter":"^ws"},"action":{"type":"block"}},)"
    R"({"trigger":{"url-filter":"^ftp"},"action":{"type":"block"}},)"
    R"({"trigger":{"url-filter":"^file"},"action":{"type":"block"}}])";

/// A line for the log about a navigation that was refused; a long address is cut.
std::string refusalLine(std::string_view address);

}  // namespace velto::window
