#include "CleaningRulesFixture.h"

#include <filesystem>
#include <fstream>
#include <limits>

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct CleaningRulesCachesTest : CleaningRulesTest {};

TEST_F(CleaningRulesCachesTest, AFolderOfExactlyTheLimitIsProposedAndOneByteLessIsNot) {
    const std::string enough = folderOf("Library/Caches/com.example.App", 50'000'000, 12);
    folderOf("Library/Caches/com.example.Small", 49'999'999, 12);
    EXPECT_THAT(discoverAll(), ElementsAre(Candidate{.ruleID = "caches",
                                                     .path = enough,
                                                     .gb = 0.05,
                                                     .daysOld = 12,
                                                     .label = "Caché de com example App."}));
}

TEST_F(CleaningRulesCachesTest, AFileChangedTodayDeepInAnOldFolderMakesItYoung) {
    const std::string used = folderOf("Library/Caches/used", 60'000'000, 62);
    const std::string left = folderOf("Library/Caches/left", 60'000'000, 62);
    home().text("Library/Caches/used/a/b/now", "x").dated(now(), now() - 3 * day);
    for (const char* name : {"used/data", "used/a/b", "used/a", "used", "left/data", "left"}) {
        TempHome::File(home().path(std::string("Library/Caches/") + name))
            .dated(now(), now() - 62 * day);
    }
    const auto found = discoverAll();
    ASSERT_THAT(found, SizeIs(2));
    for (const Candidate& candidate : found)
        EXPECT_EQ(candidate.daysOld, 62) << "the record tells the folder's own date";
    EXPECT_EQ(rules.agesInside(found), (CleaningRules::Ages{{used, 3}}));
}

TEST_F(CleaningRulesCachesTest, ManySmallFilesAddUpToTheByte) {
    for (int index = 0; index < 125; ++index) {
        home().sparse("Library/Caches/exact/" + std::to_string(index), 400'000);
        home().sparse("Library/Caches/short/" + std::to_string(index),
                      index == 7 ? 399'999 : 400'000);
    }
    EXPECT_THAT(paths(discoverAll()), ElementsAre(home().path("Library/Caches/exact")));
}

TEST_F(CleaningRulesCachesTest, WhatTheSystemNeedsIsNeverProposed) {
    for (const char* name :
         {"com.apple.Safari.SafeBrowsing", "com.apple.Safari", "com.apple.bird", "CloudKit",
          "old CloudKit copy", "com.apple.helpd", "com.apple.rtcreportingd"}) {
        folderOf(std::string("Library/Caches/") + name, 60'000'000);
    }
    EXPECT_THAT(paths(discoverAll()), testing::IsEmpty());
}

TEST_F(CleaningRulesCachesTest, TheCaseOfTheLettersCountsInWhatTheSystemNeeds) {
    const std::string other = folderOf("Library/Caches/com.apple.safari", 60'000'000);
    EXPECT_THAT(paths(discoverAll()), ElementsAre(other));
}

TEST_F(CleaningRulesCachesTest, TheLargestComesFirstAndEqualSizesByPath) {
    const std::string middle = folderOf("Library/Caches/a", 60'000'000);
    const std::string largest = folderOf("Library/Caches/z", 70'000'000);
    const std::string equal = folderOf("Library/Caches/b", 60'000'000);
    EXPECT_THAT(paths(discover("caches")), ElementsAre(largest, middle, equal));
    EXPECT_THAT(paths(discoverAll()), ElementsAre(largest, middle, equal));
}

TEST_F(CleaningRulesCachesTest, HiddenEntriesCountOnEveryLevel) {
    const std::string hidden = folderOf("Library/Caches/.hidden", 60'000'000);
    folderOf("Library/Caches/visible/.inside", 60'000'000);
    const auto found = discoverAll();
    ASSERT_THAT(found, SizeIs(2));
    EXPECT_THAT(paths(found),
                testing::UnorderedElementsAre(hidden, home().path("Library/Caches/visible")));
    for (const Candidate& candidate : found) {
        if (candidate.path == hidden) {
            EXPECT_EQ(candidate.label, "Caché de  hidden.");
        }
    }
}

TEST_F(CleaningRulesCachesTest, APlainFileAmongTheCachesHasNoFolderSize) {
    home().sparse("Library/Caches/huge.db", 900'000'000);
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesCachesTest, NothingBehindALinkIsCountedOrProposed) {
    folderOf("Documents/work", 900'000'000);
    home().link("Library/Caches/linked", home().path("Documents/work"));
    home().link("Library/Caches/app/inside", home().path("Documents/work"));
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesCachesTest, WhatTheTrashWouldRefuseIsNotProposed) {
    folderOf("Library/Caches/com.example.MailClient", 900'000'000);  // a protected word
    const std::string other = folderOf("Library/Caches/com.example.other", 60'000'000);
    EXPECT_THAT(paths(discoverAll()), ElementsAre(other));
}

TEST_F(CleaningRulesCachesTest, ANameThatIsNoTextIsProposedLikeAnyOther) {
    if (!makeFolder("Library/Caches/caf\xE9")) {
        GTEST_SKIP() << "this file system has no such names";
    }
    const std::string path = folderOf("Library/Caches/caf\xE9", 60'000'000);
    const std::string accented = folderOf("Library/Caches/café", 60'000'000);
    EXPECT_THAT(paths(discoverAll()), ElementsAre(accented, path));
}

TEST_F(CleaningRulesCachesTest, AgeIsWholeDaysSinceTheFolderWasModified) {
    const std::string path = folderOf("Library/Caches/app", 60'000'000);
    const auto daysOld = [&](double modified) {
        files->attributesAt[path] = FileAttributes{.kind = FileKind::folder, .modified = modified};
        return discover("caches").at(0).daysOld;
    };
    const double time = machine.clock.time;
    EXPECT_EQ(daysOld(time - 3 * 86400.0), 3);
    EXPECT_EQ(daysOld(time - 3 * 86400.0 + 0.5), 2) << "truncated, not rounded";
    EXPECT_EQ(daysOld(time + 40 * 86400.0), 0) << "a date to come is no negative age";
    EXPECT_EQ(daysOld(-1e300), std::numeric_limits<int>::max());
    files->attributesAt[path] = std::nullopt;
    EXPECT_EQ(discover("caches").at(0).daysOld, 0) << "an unreadable date is taken as now";
}

TEST_F(CleaningRulesCachesTest, AFolderThatCannotBeListedProposesNothingAndFailsNothing) {
    const std::string file = download("old.iso", 60'000'000, 400).path();
    folderOf("Library/Caches/app", 60'000'000);
    files->unlistable.insert(layout().caches);
    EXPECT_THAT(discover("caches"), IsEmpty());
    EXPECT_THAT(paths(discoverAll()), ElementsAre(file));
}

TEST_F(CleaningRulesCachesTest, AHomeWithoutCachesHasNothingToClean) {
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesCachesTest, AnEntryThatVanishesMeanwhileIsSkipped) {
    const std::string path = folderOf("Library/Caches/app", 60'000'000);
    files->listingOf[layout().caches] = {"gone", "app"};
    EXPECT_THAT(paths(discoverAll()), ElementsAre(path));
}

TEST_F(CleaningRulesCachesTest, HundredsOfEntriesKeepOneOrder) {
    for (int index = 0; index < 300; ++index) {
        folderOf("Library/Caches/small " + std::to_string(index), 1);
    }
    std::vector<std::string> expected;
    expected.reserve(40);
    for (int index = 0; index < 40; ++index) {
        expected.push_back(folderOf("Library/Caches/c" + std::to_string(100 + index), 50'000'000));
    }
    const auto first = discoverAll();
    EXPECT_EQ(paths(first), expected);
    for (int again = 0; again < 3; ++again)
        EXPECT_EQ(discoverAll(), first);
}

TEST_F(CleaningRulesCachesTest, ALinuxHomesCachesAreThoseOfItsCacheFolder) {
    useLinuxHome(home().path("elsewhere/cache"));
    const std::string path = folderOf("elsewhere/cache/mozilla", 50'000'000, 1);
    folderOf(".cache/not-this", 60'000'000);
    folderOf("Library/Caches/nor.this", 60'000'000);
    EXPECT_THAT(discoverAll(), ElementsAre(Candidate{.ruleID = "caches",
                                                     .path = path,
                                                     .gb = 0.05,
                                                     .daysOld = 1,
                                                     .label = "Caché de mozilla."}));
}

TEST_F(CleaningRulesCachesTest, OnALinuxHomeWhatNothingMakesAgainIsNotEvenProposed) {
    useLinuxHome();
    for (const char* name : {"rclone", "borg", "huggingface", "JetBrains", "evolution"}) {
        folderOf(std::string(".cache/") + name, 60'000'000);
    }
    const std::string unknown = folderOf(".cache/some-program", 60'000'000);
    EXPECT_THAT(paths(discoverAll()), ElementsAre(unknown)) << "the person decides";
}

TEST_F(CleaningRulesCachesTest, OnAMacsHomeTheFiveOfTheSystemAloneAreLeftOut) {
    const std::string index = folderOf("Library/Caches/restic", 60'000'000);
    EXPECT_THAT(paths(discoverAll()), ElementsAre(index));
}

TEST_F(CleaningRulesCachesTest, WhatTheTrashWouldRefuseForALinkOnTheWayIsNotProposed) {
    useLinuxHome();
    folderOf("disk/cache/mozilla", 60'000'000);
    home().link(".cache", home().path("disk/cache"));
    EXPECT_THAT(discoverAll(), IsEmpty());
    useLinuxHome(home().path("disk/cache"));
    EXPECT_THAT(discoverAll(), SizeIs(1)) << "the same folder by its own path";
}

TEST_F(CleaningRulesCachesTest, CachesOutsideTheHomeAreNotProposed) {
    const TempHome elsewhere;
    useLinuxHome(elsewhere.path());
    std::filesystem::create_directories(elsewhere.path("mozilla"));
    std::ofstream(elsewhere.path("mozilla/data")).close();
    std::filesystem::resize_file(elsewhere.path("mozilla/data"), 60'000'000);
    EXPECT_THAT(discoverAll(), IsEmpty());
    useLinuxHome(home().path());
    folderOf("Music", 60'000'000);
    EXPECT_THAT(discoverAll(), IsEmpty()) << "nor is the home itself a folder of caches";
}

}  // namespace
}  // namespace velto
