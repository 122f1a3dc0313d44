// What the kernel is told about reading, and what it says of its cache.
#include "platform/posix/reading_advice.h"

#include <fcntl.h>
#include <unistd.h>

#include <string>

#include <gmock/gmock.h>

#include "platform/posix/Descriptor.h"
#include "support/TempHome.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct ReadingAdvice : testing::Test {
    TempHome home;
    const std::int64_t page = ::sysconf(_SC_PAGESIZE);
    const std::int64_t length = 64 * page;
    Descriptor file = open();

    Descriptor open() {
        Descriptor opened(::open(home.file("file", length).path().c_str(), O_RDONLY | O_CLOEXEC));
        ::fdatasync(opened.number());  // what is not on the disk yet never leaves the cache
        readAsTold(opened.number());
        return opened;
    }
    std::vector<ByteRange> missing(ByteRange range) { return notCached(file.number(), range); }

    /// False where the temporary folder is memory, or the kernel keeps what it was told to drop.
    bool emptied() {
        forget(file.number(), {0, length});
        return missing({0, length}) == std::vector<ByteRange>{{0, length}};
    }
};

TEST_F(ReadingAdvice, WhatIsInTheCacheIsNotMissing) {
    char byte = 0;
    for (std::int64_t offset = 0; offset < length; offset += page)
        ASSERT_EQ(::pread(file.number(), &byte, 1, offset), 1);
    EXPECT_THAT(missing({0, length}), IsEmpty());
    EXPECT_THAT(missing({5, 0}), IsEmpty());
}

TEST_F(ReadingAdvice, NothingButWhatIsReadComesIntoTheCache) {
    if (!emptied()) GTEST_SKIP() << "the cache cannot be emptied here";
    char byte = 0;
    ASSERT_EQ(::pread(file.number(), &byte, 1, 10 * page + 7), 1);
    EXPECT_THAT(missing({0, length}),
                ElementsAre(ByteRange{0, 10 * page}, ByteRange{11 * page, length - 11 * page}));
    EXPECT_THAT(missing({10 * page + 1, page}), ElementsAre(ByteRange{11 * page, page}))
        << "whole pages that hold any of it";
}

TEST_F(ReadingAdvice, WhatIsGivenBackIsMissingAgainAndTheRestStays) {
    if (!emptied()) GTEST_SKIP() << "the cache cannot be emptied here";
    std::string all(static_cast<std::size_t>(length), '\0');
    ASSERT_EQ(::pread(file.number(), all.data(), all.size(), 0), length);
    forget(file.number(), {16 * page, 16 * page});
    EXPECT_THAT(missing({0, length}), ElementsAre(ByteRange{16 * page, 16 * page}));
}

}  // namespace
}  // namespace velto
