#include "app/window/zoom.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "support/fakes.h"

namespace velto::window {
namespace {

using testing::HasSubstr;

TEST(Zoom, GoesUpAndDownInTheSameStepsAndStopsAtTheEnds) {
    double zoom = ownSize;
    for (int step = 0; step < 20; ++step)
        zoom = zoomedIn(zoom);
    EXPECT_DOUBLE_EQ(zoom, 2);
    int steps = 0;
    for (; zoom > ownSize; ++steps)
        zoom = zoomedOut(zoom);
    EXPECT_DOUBLE_EQ(zoom, ownSize);
    EXPECT_EQ(steps, 5);
    for (int step = 0; step < 20; ++step)
        zoom = zoomedOut(zoom);
    EXPECT_DOUBLE_EQ(zoom, 0.8);
    EXPECT_DOUBLE_EQ(zoomedIn(zoom), 0.9);
}

TEST(Zoom, IsKeptOverARestart) {
    FakeUserDefaults defaults;
    EXPECT_DOUBLE_EQ(keptZoom(defaults), ownSize);
    keepZoom(defaults, 1.25);
    EXPECT_DOUBLE_EQ(keptZoom(defaults), 1.25);
    keepZoom(defaults, ownSize);
    EXPECT_FALSE(defaults.value("velto.window.zoom")) << "nothing is left to be kept";
}

TEST(Zoom, WhateverElseIsStoredThereLeavesThePageReadable) {
    FakeUserDefaults defaults;
    for (const DefaultsValue& wrong :
         {DefaultsValue(0.0), DefaultsValue(-1.0), DefaultsValue(1e9), DefaultsValue(true),
          DefaultsValue(std::numeric_limits<double>::quiet_NaN()), DefaultsValue("2")}) {
        defaults.setValue("velto.window.zoom", wrong);
        EXPECT_DOUBLE_EQ(keptZoom(defaults), ownSize);
    }
}

TEST(Zoom, WhatBelongsToTheWindowDoesNotGrowWithThePage) {
    EXPECT_THAT(roomScript(130, ownSize), HasSubstr("'--window-controls-end', '130px'"));
    EXPECT_THAT(roomScript(130, ownSize), HasSubstr("'--strip', '52px'"));
    EXPECT_THAT(roomScript(130, 2), HasSubstr("'--window-controls-end', '65px'"));
    EXPECT_THAT(roomScript(130, 2), HasSubstr("'--strip', '26px'"));
}

}  // namespace
}  // namespace velto::window
