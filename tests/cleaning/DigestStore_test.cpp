#include "cleaning/DigestStore.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "support/TestPlatform.h"

namespace velto {
namespace {

using Part = DigestStore::Part;

constexpr std::int64_t second = 1'000'000'000;
const std::string md5(32, 'a');
const std::string samples(64, 'b');
const std::string sha(64, 'c');

FileStamp stamp(std::uint64_t number, std::int64_t changed = 1'000 * second) {
    return {.identity = {.device = 7, .number = number},
            .length = 5'000'000,
            .modified = 900 * second,
            .changed = changed};
}

TEST(DigestStore, AnUnchangedFileIsKnownAgain) {
    DigestStore store;
    store.put(stamp(1), Part::firstBytes, md5, 2'000);
    store.put(stamp(1), Part::wholeContent, sha, 2'000);
    EXPECT_EQ(store.find(stamp(1), Part::firstBytes), md5);
    EXPECT_EQ(store.find(stamp(1), Part::wholeContent), sha);
    EXPECT_EQ(store.find(stamp(1), Part::samples), std::nullopt);
    EXPECT_EQ(store.find(stamp(2), Part::firstBytes), std::nullopt);
}

TEST(DigestStore, AFileOfWhichAnythingHasChangedIsReadAgain) {
    DigestStore store;
    store.put(stamp(1), Part::wholeContent, sha, 2'000);
    FileStamp other = stamp(1);
    ++other.length;
    EXPECT_EQ(store.find(other, Part::wholeContent), std::nullopt);
    other = stamp(1);
    ++other.modified;
    EXPECT_EQ(store.find(other, Part::wholeContent), std::nullopt);
    other = stamp(1);
    ++other.changed;
    EXPECT_EQ(store.find(other, Part::wholeContent), std::nullopt);
    other = stamp(1);
    ++other.identity.device;
    EXPECT_EQ(store.find(other, Part::wholeContent), std::nullopt);
    // What is known of the new state says nothing of the other parts.
    other = stamp(1);
    ++other.changed;
    store.put(other, Part::firstBytes, md5, 2'000);
    EXPECT_EQ(store.find(other, Part::wholeContent), std::nullopt);
}

TEST(DigestStore, AFileThatWasChangedJustBeforeItWasReadIsNotRemembered) {
    DigestStore store;
    store.put(stamp(1, 1'998 * second), Part::wholeContent, sha, 2'000);
    store.put(stamp(2, 2'005 * second), Part::wholeContent, sha, 2'000);  // a clock that is ahead
    EXPECT_EQ(store.size(), 0u);
    store.put(stamp(3, 1'998 * second - 1), Part::wholeContent, sha, 2'000);
    EXPECT_EQ(store.size(), 1u);
}

TEST(DigestStore, WhatIsNoDigestIsNotTaken) {
    DigestStore store;
    store.put(stamp(1), Part::wholeContent, md5, 2'000);
    store.put(stamp(1), Part::firstBytes, "x\n", 2'000);
    EXPECT_EQ(store.size(), 0u);
}

TEST(DigestStore, WhatNobodyAskedForIsForgottenAndTheRestIsNot) {
    DigestStore first;
    for (std::uint64_t number = 1; number <= 3; ++number)
        first.put(stamp(number), Part::wholeContent, sha, 2'000);
    const auto store = DigestStore::decoded(first.encoded());
    EXPECT_FALSE(store->hasChanged());
    store->find(stamp(2), Part::samples);
    store->dropUnused();
    EXPECT_EQ(store->size(), 1u);
    EXPECT_EQ(store->find(stamp(2), Part::wholeContent), sha);
    EXPECT_TRUE(store->hasChanged());
}

TEST(DigestStore, BeginningsAreKnownAgainAsManyAsThereAre) {
    DigestStore store;
    const std::string two(2 * DigestStore::beginningLength, 'd');
    store.put(stamp(1), Part::beginnings, two, 2'000);
    store.put(stamp(2), Part::beginnings, two.substr(1), 2'000);
    store.put(stamp(3), Part::firstBytes, md5, 2'000);
    const auto again = DigestStore::decoded(store.encoded());
    EXPECT_EQ(again->size(), 2u);
    EXPECT_EQ(again->find(stamp(1), Part::beginnings), two);
    EXPECT_EQ(again->find(stamp(3), Part::beginnings), std::nullopt);
    EXPECT_EQ(again->find(stamp(3), Part::firstBytes), md5);
}

TEST(DigestStore, BeginningsAreBoundedTogether) {
    DigestStore store;
    const std::string most(DigestStore::mostBeginnings * DigestStore::beginningLength, 'd');
    const std::size_t files = DigestStore::mostOfBeginnings / most.size();
    for (std::uint64_t number = 0; number < files + 10; ++number)
        store.put(stamp(number), Part::beginnings, most, 2'000);
    EXPECT_EQ(store.size(), files);
    const auto again = DigestStore::decoded(store.encoded());
    EXPECT_EQ(again->size(), files);
    again->put(stamp(files), Part::beginnings, most, 2'000);
    EXPECT_EQ(again->size(), files);
    again->find(stamp(1), Part::beginnings);
    again->dropUnused();
    again->put(stamp(files), Part::beginnings, most, 2'000);
    EXPECT_EQ(again->size(), 2u) << "there is room again";
}

TEST(DigestStore, ItIsBounded) {
    DigestStore store;
    for (std::uint64_t number = 0; number < DigestStore::mostFiles + 10; ++number)
        store.put(stamp(number), Part::firstBytes, md5, 2'000);
    EXPECT_EQ(store.size(), DigestStore::mostFiles);
}

struct DigestFileOnDisk : testing::Test {
    TestPlatform machine;
    DigestFile file{*machine.platform.files, machine.platform.layout};
    const std::string path = machine.platform.layout.dataFolder + "/digests";

    std::string stored() {
        DigestStore store;
        store.put(stamp(1), Part::firstBytes, md5, 2'000);
        store.put(stamp(1), Part::samples, samples, 2'000);
        store.put(stamp(1), Part::wholeContent, sha, 2'000);
        store.put(stamp(2), Part::firstBytes, md5, 2'000);
        file.save(store);
        return machine.platform.files->read(path, ownFile(1 << 20));
    }
};

TEST_F(DigestFileOnDisk, WhatWasRememberedIsKnownAtTheNextStart) {
    EXPECT_EQ(file.load()->size(), 0u);
    stored();
    const auto store = file.load();
    EXPECT_EQ(store->find(stamp(1), Part::samples), samples);
    EXPECT_EQ(store->find(stamp(1), Part::wholeContent), sha);
    EXPECT_EQ(store->find(stamp(2), Part::firstBytes), md5);
    EXPECT_EQ(store->find(stamp(2), Part::wholeContent), std::nullopt);
}

TEST_F(DigestFileOnDisk, ItIsForTheUserAlone) {
    stored();
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(DigestFileOnDisk, WithoutNewsNothingIsWritten) {
    file.save(DigestStore());
    EXPECT_FALSE(machine.platform.files->exists(path));
}

TEST_F(DigestFileOnDisk, ADamagedOneCountsAsNoneWhereverTheDamageIs) {
    const std::string whole = stored();
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string damaged = whole;
        damaged[at] = damaged[at] == '1' ? '2' : '1';
        EXPECT_EQ(DigestStore::decoded(damaged)->size(), 0u) << at;
        EXPECT_EQ(DigestStore::decoded(whole.substr(0, at))->size(), 0u) << at;
    }
    EXPECT_EQ(DigestStore::decoded(whole)->size(), 2u);
    EXPECT_EQ(DigestStore::decoded(whole + "\n")->size(), 0u);
}

}  // namespace
}  // namespace velto
