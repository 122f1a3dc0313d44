#include "app/window/graphics.h"

#include <gtest/gtest.h>

namespace velto::window {
namespace {

TEST(Graphics, TheProcessorDrawsWhereNothingElseCan) {
    EXPECT_TRUE(processorDraws({}));
    EXPECT_TRUE(processorDraws({.directNodes = {"by-path", "card0"}}))
        << "it can only show pictures";
}

TEST(Graphics, AGraphicsProcessorIsUsed) {
    EXPECT_FALSE(processorDraws({.directNodes = {"by-path", "card1", "renderD128"}}));
    EXPECT_FALSE(processorDraws({.directNodes = {"renderD129"}})) << "one without a screen";
    EXPECT_FALSE(processorDraws({.otherDevice = true}));
}

TEST(Graphics, WhoeverWantsSoftwareGetsIt) {
    for (const char* const yes : {"1", "true", "yes"}) {
        EXPECT_TRUE(processorDraws({.directNodes = {"card1", "renderD128"}, .software = yes}))
            << yes;
        EXPECT_TRUE(processorDraws({.otherDevice = true, .software = yes})) << yes;
    }
    for (const char* const no : {"", "0", "false"}) {
        EXPECT_FALSE(processorDraws({.directNodes = {"renderD128"}, .software = no})) << no;
    }
}

}  // namespace
}  // namespace velto::window
