#include "app/window/window_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "app/window/ReloadPace.h"

namespace velto::window {
namespace {

using testing::DoubleEq;

constexpr const char* bundle = "Velto_velto_app.bundle";

TEST(WindowRules, ADoubleClickOnTheHandleDoesWhatTheUserHasSetForTitleBars) {
    EXPECT_EQ(titleDoubleClickAction(""), TitleAction::zoom) << "nothing was ever set";
    EXPECT_EQ(titleDoubleClickAction("Maximize"), TitleAction::zoom);
    EXPECT_EQ(titleDoubleClickAction("Fill"), TitleAction::zoom);
    EXPECT_EQ(titleDoubleClickAction("Minimize"), TitleAction::minimise);
    EXPECT_EQ(titleDoubleClickAction("None"), TitleAction::nothing);
}

TEST(WindowRules, TheWindowKeepsAHandleToDragItByAtEveryWidth) {
    EXPECT_THAT(dragRegionWidth(738), DoubleEq(140)) << "the width where both rules meet";
    EXPECT_THAT(dragRegionWidth(739), DoubleEq(141));
    EXPECT_THAT(dragRegionWidth(1180), DoubleEq(582));
    EXPECT_THAT(dragRegionWidth(3840), DoubleEq(3242));
    EXPECT_THAT(dragRegionWidth(737), DoubleEq(140)) << "narrower windows keep the least width";
    EXPECT_THAT(dragRegionWidth(500), DoubleEq(140));
}

TEST(WindowRules, TheLeastHandleWinsWhereTheWindowHasNoRoomForBothBounds) {
    EXPECT_THAT(dragRegionWidth(340), DoubleEq(140)) << "both bounds still hold";
    EXPECT_THAT(dragRegionWidth(300), DoubleEq(140)) << "at most 100, at least 140";
    EXPECT_THAT(dragRegionWidth(0), DoubleEq(140));
    EXPECT_GE(dragRegionWidth(-1000), 0) << "a container that is not laid out yet";
}

TEST(WindowRules, TheHandleLeavesThePageItsControlsOnTheRight) {
    for (double width = minimumWidth; width <= 4000; width += 1) {
        EXPECT_LE(dragRegionWidth(width), width - 200);
    }
}

TEST(WindowRules, TheBackgroundIsThePagesOwnSoThatNothingFlashes) {
    const Colour light = backgroundColour(Appearance::light);
    EXPECT_THAT((std::array{light.red, light.green, light.blue}),
                testing::ElementsAre(246, 246, 243));
    const Colour dark = backgroundColour(Appearance::dark);
    EXPECT_THAT((std::array{dark.red, dark.green, dark.blue}), testing::ElementsAre(10, 10, 10));
}

TEST(WindowRules, TheContextMenuLosesItsDeveloperEntriesInBothLanguages) {
    for (const char* title : {"Inspect Element", "Inspeccionar elemento", "Inspect", "ELEMENT x",
                              "INSPECCIONAR", "Preinspection", "_Inspect Element", "Elementos"}) {
        EXPECT_TRUE(isDeveloperMenuItem(title)) << title;
    }
}

TEST(WindowRules, TheContextMenuKeepsEverythingElse) {
    for (const char* title : {"", "Copy", "Copiar", "Select All", "Reload", "Look Up “disk”",
                              "Elephant", "Inspired", "Selección"}) {
        EXPECT_FALSE(isDeveloperMenuItem(title)) << title;
    }
}

TEST(WindowRules, TheContextMenuLeadsToNoOtherPage) {
    for (const char* identifier : {"WKMenuItemIdentifierGoBack", "WKMenuItemIdentifierGoForward",
                                   "WKMenuItemIdentifierReload"}) {
        EXPECT_TRUE(isBrowsingMenuItem(identifier)) << identifier;
    }
    for (const char* identifier : {"", "WKMenuItemIdentifierCopy", "WKMenuItemIdentifierPaste"}) {
        EXPECT_FALSE(isBrowsingMenuItem(identifier)) << identifier;
    }
}

struct Disk {
    std::vector<std::string> present;
    std::vector<std::string> asked;

    std::optional<std::string> find(const std::vector<std::string>& parents) {
        return findResourceBundle(parents, [&](const std::string& path) {
            asked.push_back(path);
            return std::find(present.begin(), present.end(), path) != present.end();
        });
    }
};

TEST(WindowRules, ThePageComesFromTheFirstPlaceThatHasIt) {
    Disk disk{.present = {std::string("/b/") + bundle, std::string("/c/") + bundle}};
    EXPECT_EQ(disk.find({"/a", "/b", "/c"}), std::string("/b/") + bundle);
    EXPECT_THAT(disk.asked,
                testing::ElementsAre(std::string("/a/") + bundle, std::string("/b/") + bundle))
        << "in the given order, and no further than needed";
}

TEST(WindowRules, APageThatIsNowhereIsNotMadeUp) {
    Disk disk;
    EXPECT_EQ(disk.find({"/a", "/b"}), std::nullopt);
    EXPECT_EQ(disk.asked.size(), 2u);
    EXPECT_EQ(disk.find({}), std::nullopt);
}

TEST(WindowRules, APlaceThatTheSystemDoesNotNameIsSkipped) {
    Disk disk{.present = {std::string("/") + bundle}};
    EXPECT_EQ(disk.find({""}), std::nullopt) << "an empty place is not the root of the disk";
    EXPECT_EQ(disk.find({"/"}), std::string("/") + bundle);
}

TEST(WindowRules, TheWindowStartsNoSmallerThanItMayBecome) {
    EXPECT_GE(initialWidth, minimumWidth);
    EXPECT_GE(initialHeight, minimumHeight);
}

TEST(ReloadPace, APageThatDiesOnceComesBackAtOnce) {
    ReloadPace pace;
    EXPECT_THAT(pace.delay(1000), DoubleEq(0));
    EXPECT_THAT(pace.delay(1001), DoubleEq(0));
    EXPECT_THAT(pace.delay(1002), DoubleEq(0));
}

TEST(ReloadPace, APageThatKeepsDyingIsLoadedThreeTimesAMinuteAndNotGivenUp) {
    ReloadPace pace;
    for (const double now : {0.0, 1.0, 2.0})
        pace.delay(now);
    EXPECT_THAT(pace.delay(3), DoubleEq(57)) << "a minute after the first one";
    EXPECT_THAT(pace.delay(60), DoubleEq(1)) << "the waiting one counts too";
    EXPECT_THAT(pace.delay(62), DoubleEq(0)) << "a minute after the third one";
    EXPECT_THAT(pace.delay(500), DoubleEq(0));
}

TEST(WindowRules, ThePageIsToldItsSystemEvenBeforeTheRootElementStands) {
    for (const std::string system : {"linux", "macos"}) {
        const std::string script = platformScript(system);
        EXPECT_THAT(script, testing::HasSubstr("document.documentElement.dataset.platform = \"" +
                                               system + "\";"));
        EXPECT_THAT(script, testing::HasSubstr("if (!document.documentElement) return false;"));
        EXPECT_THAT(script, testing::HasSubstr(".observe(document, { childList: true });"));
        EXPECT_EQ(std::count(script.begin(), script.end(), '{'),
                  std::count(script.begin(), script.end(), '}'));
    }
}

}  // namespace
}  // namespace velto::window
