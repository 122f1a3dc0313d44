// Large files of one length are read side by side, and no further than they are alike.

#include <algorithm>
#include <string>

#include <gmock/gmock.h>

#include "cleaning/DigestStore.h"
#include "cleaning/DupFinder.h"
#include "support/FakeFileContents.h"
#include "support/fakes.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

constexpr std::int64_t inMebibytes = 1024 * 1024;
constexpr std::int64_t samplesOf = 3 * 4096;  // what is read of a file before its whole content

struct ComparedInParts : testing::Test {
    static constexpr std::int64_t length = 20 * inMebibytes;

    /// A file that is as all others up to a place, and differs there.
    FakeFileContents::File& add(const std::string& path, std::int64_t differsAt = -1,
                                char with = 'x') {
        records.push_back({path, length});
        FakeFileContents::File& file = contents.files[path];
        file.content.assign(static_cast<std::size_t>(length), 'a');
        if (differsAt >= 0) file.content[static_cast<std::size_t>(differsAt)] = with;
        file.stamp = stampOf(records.size());
        return file;
    }
    static FileStamp stampOf(std::uint64_t number) {
        return {.identity = {.device = 1, .number = number},
                .length = length,
                .modified = 1'000'000'000'000,
                .changed = 1'000'000'000'000};
    }
    std::vector<std::vector<std::string>> find(std::size_t threads = 1,
                                               DigestStore* known = nullptr) {
        std::vector<std::vector<std::string>> lists;
        const auto result = DupFinder(clock, contents, threads, known).find(records);
        for (const auto& group : result.groups)
            lists.push_back(group.paths);
        return lists;
    }

    FakeClock clock;
    FakeFileContents contents;
    std::vector<FileRecord> records;
};

TEST_F(ComparedInParts, WhatDiffersSoonIsNotReadOn) {
    add("/1");
    add("/2", 300'000);
    add("/3", 3 * inMebibytes);
    EXPECT_THAT(find(), IsEmpty());
    EXPECT_EQ(contents.bytesRead("/2"), inMebibytes + samplesOf);
    EXPECT_EQ(contents.bytesRead("/1"), 4 * inMebibytes + samplesOf);
    EXPECT_EQ(contents.bytesRead("/3"), 4 * inMebibytes + samplesOf);
}

TEST_F(ComparedInParts, WhatStaysIsReadOnceAndHasItsWholeDigest) {
    add("/1");
    add("/2", 300'000);
    add("/3");
    const auto result = DupFinder(clock, contents, 1).find(records);
    ASSERT_THAT(result.groups, SizeIs(1));
    // The digest of 20,971,520 times "a", from the coreutils' sha256sum.
    EXPECT_EQ(result.groups[0].hash,
              "48b6fb8f1c2fec38d030604889d674722c4af237733c913b698400b59c9294b4");
    EXPECT_EQ(contents.bytesRead("/1"), length + samplesOf);
}

TEST_F(ComparedInParts, SeveralGroupsOfOneLengthPart) {
    add("/1");
    add("/2", 9 * inMebibytes);
    add("/3");
    add("/4", 9 * inMebibytes);
    add("/5", 9 * inMebibytes, 'y');
    EXPECT_THAT(find(), ElementsAre(ElementsAre("/1", "/3"), ElementsAre("/2", "/4")));
}

TEST_F(ComparedInParts, AFileThatChangesBetweenTwoPartsIsLeftOut) {
    add("/1");
    add("/changed");
    add("/2");
    contents.beforeRead = [&](const std::string& path, std::int64_t offset) {
        // Once "/1" is read from 2 MiB on, the others' first 2 MiB have been compared.
        if (path == "/1" && offset == 2 * inMebibytes) ++contents.files["/changed"].stamp->changed;
    };
    EXPECT_THAT(find(), ElementsAre(ElementsAre("/1", "/2")));
}

TEST_F(ComparedInParts, AFileThatIsGoneBetweenTwoPartsIsLeftOut) {
    add("/1");
    add("/gone").opensBeforeItIsGone = 4;
    add("/2");
    EXPECT_THAT(find(), ElementsAre(ElementsAre("/1", "/2")));
}

TEST_F(ComparedInParts, AFileWithSeveralNamesIsReadOnce) {
    add("/1").stamp = stampOf(77);
    add("/name of 1").stamp = stampOf(77);
    add("/2");
    EXPECT_THAT(find(2), ElementsAre(ElementsAre("/1", "/name of 1", "/2")));
    EXPECT_EQ(contents.bytesRead("/1") + contents.bytesRead("/name of 1"), length + 2 * samplesOf);
}

TEST_F(ComparedInParts, ANameThatCannotBeOpenedSpoilsNoOtherOfTheFile) {
    auto& first = add("/1");
    first.stamp = stampOf(77);
    first.opensBeforeItIsGone = 3;
    add("/name of 1").stamp = stampOf(77);
    add("/2");
    EXPECT_THAT(find(), ElementsAre(ElementsAre("/name of 1", "/2")));
}

TEST_F(ComparedInParts, HoweverManyAreComparedFewAreOpen) {
    for (int index = 0; index < 40; ++index)
        add("/" + std::to_string(index), 300'000, static_cast<char>('b' + index));
    EXPECT_THAT(find(4), IsEmpty());
    EXPECT_THAT(contents.mostOpen(), Le(4));
}

TEST_F(ComparedInParts, ADiskThatRotatesIsReadInTheOrderOfTheDisk) {
    const std::uint64_t positions[] = {30, 10, 40, 20};
    for (int index = 0; index < 4; ++index) {
        add("/" + std::to_string(index)).place =
            FilePlace{.volume = 1, .diskRotates = true, .position = positions[index]};
    }
    EXPECT_THAT(find(8), ElementsAre(ElementsAre("/0", "/1", "/2", "/3")));
    EXPECT_EQ(contents.mostOpen(), 1);
    std::vector<std::string> order;
    for (const auto& read : contents.reads()) {
        if (read.offset == 0 && read.wanted == 4096) order.push_back(read.path);
    }
    EXPECT_THAT(order, ElementsAre("/1", "/3", "/0", "/2"));
}

TEST_F(ComparedInParts, WhatWasNotReadToItsEndIsNotReadAgainEither) {
    add("/1");
    add("/2");
    add("/soon", 300'000);
    add("/late", 15 * inMebibytes);
    DigestStore store;
    const auto first = find(2, &store);
    EXPECT_THAT(first, ElementsAre(ElementsAre("/1", "/2")));
    const auto before = contents.reads().size();
    EXPECT_EQ(find(2, &store), first);
    EXPECT_EQ(find(2, DigestStore::decoded(store.encoded()).get()), first);
    EXPECT_EQ(contents.reads().size(), before);
}

TEST_F(ComparedInParts, AFileThatIsNewAmongRememberedOnesAloneIsRead) {
    add("/1");
    add("/2", 15 * inMebibytes);
    DigestStore store;
    EXPECT_THAT(find(1, &store), IsEmpty());
    const auto ofFirst = contents.bytesRead("/1");
    add("/new", 15 * inMebibytes);
    EXPECT_THAT(find(1, &store), ElementsAre(ElementsAre("/2", "/new")));
    EXPECT_EQ(contents.bytesRead("/new"), length + samplesOf);
    EXPECT_EQ(contents.bytesRead("/1"), ofFirst);
}

}  // namespace
}  // namespace velto
