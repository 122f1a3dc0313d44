#include "platform/ApplicationActivity.h"

#include <gtest/gtest.h>

#include <vector>

namespace velto {
namespace {

TEST(ApplicationActivity, AnObserverHearsThePresentStateAndEachChangeOnce) {
    ApplicationActivity activity;
    std::vector<bool> heard;
    const auto token = activity.observe([&](bool active) { heard.push_back(active); });
    activity.set(false);
    activity.set(true);
    activity.set(true);
    activity.set(false);
    EXPECT_EQ(heard, (std::vector<bool>{false, true, false}));
}

TEST(ApplicationActivity, WhoGaveTheTokenBackHearsNothingMore) {
    std::vector<bool> heard;
    auto activity = std::make_unique<ApplicationActivity>();
    auto gone = activity->observe([&](bool active) { heard.push_back(active); });
    auto kept = activity->observe([](bool) {});
    gone.reset();
    activity->set(true);
    EXPECT_EQ(heard, std::vector<bool>{false});
    EXPECT_TRUE(activity->isActive());
    activity.reset();
    kept.reset();  // outlived what it came from
}

TEST(ApplicationActivity, IsLeftOnlyWhenItWasInFrontBefore) {
    ApplicationActivity activity;
    activity.set(false);
    EXPECT_FALSE(activity.isLeft()) << "it is about to be shown";
    activity.set(true);
    EXPECT_FALSE(activity.isLeft());
    activity.set(false);
    EXPECT_TRUE(activity.isLeft());
}

}  // namespace
}  // namespace velto
