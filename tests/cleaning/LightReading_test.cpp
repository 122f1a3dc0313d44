#include "cleaning/LightReading.h"

#include <algorithm>

#include <gmock/gmock.h>

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t mebibyte = 1024 * 1024;

/// A file of which one part is in the cache already.
struct PartlyCached final : FileContent {
    std::int64_t size() const override { return 0; }
    std::ptrdiff_t read(std::int64_t, std::span<std::byte>) override { return 0; }
    std::vector<ByteRange> notCached(ByteRange range) override {
        std::vector<ByteRange> ranges;
        const std::int64_t before = std::min(range.end(), cached.offset);
        const std::int64_t after = std::max(range.offset, cached.end());
        if (before > range.offset) ranges.push_back({range.offset, before - range.offset});
        if (after < range.end()) ranges.push_back({after, range.end() - after});
        return ranges;
    }
    void readAhead(ByteRange range) override {
        asked.push_back(range);
        held += range.length;
        mostHeld = std::max(mostHeld, held);
    }
    void forget(ByteRange range) override {
        given.push_back(range);
        held -= range.length;
    }

    ByteRange cached;
    std::vector<ByteRange> asked;
    std::vector<ByteRange> given;
    std::int64_t held = 0;
    std::int64_t mostHeld = 0;
};

TEST(LightReading, WhatWasBroughtIntoTheCacheIsGivenBackAndNothingElse) {
    PartlyCached file;
    file.cached = {3 * mebibyte, 6 * mebibyte};
    {
        LightReading light(file, {mebibyte, 11 * mebibyte});
        for (std::int64_t offset = mebibyte; offset < 12 * mebibyte; offset += mebibyte)
            light.goTo(offset);
    }
    EXPECT_THAT(file.asked, ElementsAre(ByteRange{mebibyte, 2 * mebibyte},
                                        ByteRange{9 * mebibyte, 3 * mebibyte}));
    EXPECT_EQ(file.given, file.asked);
}

TEST(LightReading, WhatIsCachedAlreadyIsNeitherAskedForNorGivenBack) {
    PartlyCached file;
    file.cached = {0, 20 * mebibyte};
    { LightReading(file, {0, 20 * mebibyte}).goTo(0); }
    EXPECT_THAT(file.asked, IsEmpty());
    EXPECT_THAT(file.given, IsEmpty());
}

TEST(LightReading, TheNextWindowIsOnItsWayBeforeThisOneIsUsedUp) {
    PartlyCached file;
    LightReading light(file, {0, 20 * mebibyte});
    light.goTo(0);
    light.goTo(mebibyte);
    EXPECT_THAT(file.asked, ElementsAre(ByteRange{0, LightReading::window},
                                        ByteRange{LightReading::window, LightReading::window}));
}

TEST(LightReading, NoMoreThanTwoWindowsAreHeld) {
    PartlyCached file;
    {
        LightReading light(file, {0, 100 * mebibyte});
        for (std::int64_t offset = 0; offset < 100 * mebibyte; offset += mebibyte)
            light.goTo(offset);
    }
    EXPECT_EQ(file.mostHeld, 2 * LightReading::window);
    EXPECT_EQ(file.held, 0);
}

TEST(LightReading, WhatIsGivenUpIsGivenBack) {
    PartlyCached file;
    { LightReading(file, {0, 20 * mebibyte}).goTo(0); }
    EXPECT_EQ(file.given, file.asked);
    EXPECT_EQ(file.held, 0);
}

}  // namespace
}  // namespace velto
