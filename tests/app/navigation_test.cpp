#include "app/window/navigation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace velto::window {
namespace {

constexpr auto other = NavigationKind::other;
constexpr auto followed = NavigationKind::linkFollowed;
constexpr auto form = NavigationKind::formSent;
constexpr auto mainFrame = NavigationTarget::mainFrame;
constexpr auto allow = NavigationPolicy::allow;
constexpr auto browser = NavigationPolicy::openInBrowser;
constexpr auto refuse = NavigationPolicy::refuse;

constexpr const char* page = "velto://app/index.html";

NavigationPolicy policy(NavigationKind kind, std::string_view address,
                        NavigationTarget target = mainFrame) {
    return policyFor({.kind = kind, .target = target, .address = address});
}

// Addresses that are not the page's own document, however near they come to it.
const std::vector<std::string> otherDocuments{
    "",
    "about:blank",
    "about:srcdoc",
    "data:text/html,<script>1</script>",
    "blob:velto://app/8e1b1f0c",
    "javascript:alert(1)",
    "file:///home/ana/Downloads/holiday%20photos.html",
    "file:///opt/velto/Velto_velto_app.bundle/index.html",
    "http://example.com/",
    "https://example.com/index.html",
    "ftp://example.com/",
    "velto:",
    "velto://app",
    "velto://app/",
    "velto://app/other.html",
    "velto://app/velto.js",
    "velto://app/index.html/",
    "velto://app/index.html?",
    "velto://app/index.html?x=1",
    "velto://app/index.html2",
    "velto://app//index.html",
    "velto://app/./index.html",
    "velto://app/%69ndex.html",
    "velto://app:80/index.html",
    "velto://user@app/index.html",
    "velto://App/index.html",
    "velto://app.example.com/index.html",
    "velto://example.com/index.html",
    "velto:///index.html",
    "Velto://app/index.html",
    " velto://app/index.html",
    "velto://app/index.html ",
    "view-source:velto://app/index.html",
    "blob:velto://app/index.html",
};

TEST(Navigation, ThePagesOwnDocumentLoadsAndLoadsAgain) {
    EXPECT_EQ(policy(other, page), allow);
    EXPECT_EQ(policy(other, "velto://app/index.html#"), allow) << "a place inside it";
    EXPECT_EQ(policy(other, "velto://app/index.html#a?b/../c"), allow);
    EXPECT_EQ(pageAddress, page);
    EXPECT_TRUE(pageAddress.starts_with(pageOrigin));
    EXPECT_TRUE(pageOrigin.starts_with(pageScheme));
}

TEST(Navigation, NoOtherDocumentTakesThePagesPlace) {
    for (const std::string& address : otherDocuments) {
        EXPECT_EQ(policy(other, address), refuse) << address;
        EXPECT_FALSE(isPageAddress(address)) << address;
    }
}

TEST(Navigation, NothingOpensInsideThePageOrBesideItNotEvenThePage) {
    for (const auto target :
         {NavigationTarget::frameInside, NavigationTarget::newWindow, NavigationTarget::download}) {
        EXPECT_EQ(policy(other, page, target), refuse);
        for (const std::string& address : otherDocuments) {
            EXPECT_EQ(policy(other, address, target), refuse) << address;
        }
    }
}

TEST(Navigation, FormsGoNowhere) {
    EXPECT_EQ(policy(form, page), refuse);
    for (const std::string& address : otherDocuments)
        EXPECT_EQ(policy(form, address), refuse) << address;
}

TEST(Navigation, AFollowedLinkIsTheBrowsersWhereverItWasToOpen) {
    for (const auto target : {mainFrame, NavigationTarget::frameInside, NavigationTarget::newWindow,
                              NavigationTarget::download}) {
        EXPECT_EQ(policy(followed, "http://example.com/", target), browser);
        EXPECT_EQ(policy(followed, "https://example.com/a?b#c", target), browser);
        EXPECT_EQ(policy(followed, "HTTPS://EXAMPLE.COM/", target), browser);
        EXPECT_EQ(policy(followed, "mailto:ana@example.com", target), browser);
    }
}

TEST(Navigation, AFollowedLinkOpensNothingElseOnTheMachine) {
    for (const std::string address : {page,
                                      "velto://app/index.html#place",
                                      "about:blank",
                                      "file:///etc/passwd",
                                      "file:///usr/share/applications/x.desktop",
                                      "javascript:alert(1)",
                                      "data:text/html,x",
                                      "blob:velto://app/1",
                                      "smb://host/share",
                                      "ssh://host",
                                      "x-apple.systempreferences:com.apple.settings",
                                      "vnc://host",
                                      "tel:112",
                                      "httpx://host",
                                      "http",
                                      "",
                                      ":",
                                      "//example.com/",
                                      "http s://example.com/",
                                      "http://example.com/\n",
                                      "http://example.com/a b",
                                      "http://exa\xCC\x81mple.com/"}) {
        EXPECT_EQ(policy(followed, address), refuse) << address;
    }
}

NavigationResponse answer(std::string_view address, std::string_view type, bool isMainFrame) {
    return {.address = address, .type = type, .isMainFrame = isMainFrame};
}

TEST(Navigation, OnlyThePagesDocumentIsShownAndOnlyAsADocument) {
    EXPECT_TRUE(mayBeShown(answer(page, "text/html", true)));
    EXPECT_TRUE(mayBeShown(answer(page, "Text/HTML; charset=utf-8", true)));
    EXPECT_FALSE(mayBeShown(answer(page, "text/html", false))) << "inside a frame";
    for (const char* type : {"", "text/plain", "application/pdf", "image/svg+xml",
                             "application/xhtml+xml", "text/html2", "application/octet-stream"}) {
        EXPECT_FALSE(mayBeShown(answer(page, type, true))) << type;
    }
    for (const std::string& address : otherDocuments) {
        EXPECT_FALSE(mayBeShown(answer(address, "text/html", true))) << address;
    }
}

TEST(Navigation, OnlyThePagesDocumentInTheMainFrameSpeaks) {
    EXPECT_TRUE(maySpeak(page, true));
    EXPECT_TRUE(maySpeak("velto://app/index.html#place", true));
    EXPECT_FALSE(maySpeak(page, false));
    for (const std::string& address : otherDocuments)
        EXPECT_FALSE(maySpeak(address, true)) << address;
}

TEST(Navigation, AGuardedScriptAsksForThePageFirst) {
    EXPECT_EQ(guardedScript("window.velto = {};\nx = 1;"),
              "if (document.URL.split(\"#\")[0] === \"velto://app/index.html\") {\n"
              "window.velto = {};\nx = 1;\n}");
}

TEST(Navigation, TheRulesBlockTheNetworkAndTheDiskAndNotThePage) {
    const auto rules = nlohmann::json::parse(blockingRules);
    const auto isBlocked = [&](std::string_view address) {
        return std::any_of(rules.begin(), rules.end(), [&](const nlohmann::json& rule) {
            const std::string filter = rule.at("trigger").at("url-filter");
            EXPECT_EQ(rule.at("action").at("type"), "block");
            EXPECT_EQ(filter.front(), '^');
            return address.starts_with(filter.substr(1));
        });
    };
    for (const char* address :
         {"http://a/", "https://a/", "ws://a/", "wss://a/", "ftp://a/", "file:///etc/passwd"}) {
        EXPECT_TRUE(isBlocked(address)) << address;
    }
    EXPECT_FALSE(isBlocked(pageAddress));
    EXPECT_FALSE(isBlocked("data:image/png;base64,"));
}

TEST(Navigation, ARefusalIsOneShortLineWhateverTheAddressHolds) {
    EXPECT_EQ(refusalLine("file:///a.html"), "Velto ▶ navegación rechazada: file:///a.html");
    const std::string line = refusalLine("data:text/html,\n\\" + std::string(100'000, 'x'));
    EXPECT_LT(line.size(), 200u);
    EXPECT_EQ(line.find_first_of("\n\\"), std::string::npos);
    EXPECT_TRUE(line.ends_with("x…"));
    const std::string cut = refusalLine(std::string(119, 'x') + "é and more");
    EXPECT_EQ(cut, "Velto ▶ navegación rechazada: " + std::string(119, 'x') + "\uFFFD…");
}

}  // namespace
}  // namespace velto::window
