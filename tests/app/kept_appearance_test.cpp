#include "app/window/kept_appearance.h"

#include <gtest/gtest.h>

#include "support/fakes.h"

namespace velto::window {
namespace {

struct KeptAppearance : testing::Test {
    FakeUserDefaults defaults;
};

TEST_F(KeptAppearance, WhatWasChosenIsFoundAgain) {
    EXPECT_EQ(keptAppearance(defaults), std::nullopt);
    for (const Appearance chosen : {Appearance::dark, Appearance::light}) {
        keepAppearance(defaults, chosen);
        EXPECT_EQ(keptAppearance(defaults), chosen);
    }
    keepAppearance(defaults, std::nullopt);
    EXPECT_EQ(keptAppearance(defaults), std::nullopt);
    EXPECT_TRUE(defaults.values.empty());
}

TEST_F(KeptAppearance, TheChoiceOfAnOlderVersionHoldsUntilTheNextOne) {
    defaults.values["VeltoWindowAppearance"] = appearanceName(Appearance::dark);
    EXPECT_EQ(keptAppearance(defaults), Appearance::dark);
    keepAppearance(defaults, Appearance::light);
    EXPECT_EQ(keptAppearance(defaults), Appearance::light);
    EXPECT_FALSE(defaults.values.contains("VeltoWindowAppearance"));
    defaults.values["VeltoWindowAppearance"] = appearanceName(Appearance::dark);
    keepAppearance(defaults, std::nullopt);
    EXPECT_EQ(keptAppearance(defaults), std::nullopt);
}

TEST_F(KeptAppearance, AnythingElseThereIsNoChoice) {
    for (const DefaultsValue& value : {DefaultsValue(std::string("blue")), DefaultsValue(true)}) {
        defaults.values["velto.window.appearance"] = value;
        EXPECT_EQ(keptAppearance(defaults), std::nullopt);
    }
}

}  // namespace
}  // namespace velto::window
