#include "maintenance/duplicate_copies.h"

#include <filesystem>

#include "MaintenanceFixture.h"
#include "support/WatchedFiles.h"
#include "support/system_platform.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct DuplicateCopiesTest : MaintenanceRulesTest {
    std::vector<std::string> copies(const std::vector<std::string>& leaving = {}) {
        std::vector<std::string> paths;
        for (const DuplicateCopy& copy :
             duplicateCopies(machine.platform, limits.excluded, leaving)) {
            paths.push_back(copy.copy.path);
        }
        return paths;
    }
};

TEST_F(DuplicateCopiesTest, TheShortestPathStaysWhateverItsAge) {
    filled("Documents/archive/report.bin", 'x');
    filled("Desktop/r.bin", 'x');
    filled("Downloads/report.bin", 'x');
    EXPECT_THAT(copies(), ElementsAre(home().path("Downloads/report.bin"),
                                      home().path("Documents/archive/report.bin")));
}

TEST_F(DuplicateCopiesTest, WhatBelongsToAnotherUserNeitherStaysForACopyNorGoes) {
    filled("Downloads/a.bin", 'x');
    filled("Downloads/longer.bin", 'x');
    auto watched = std::make_unique<WatchedFiles>(systemFileManager());
    auto others = *watched->attributes(home().path("Downloads/a.bin"));
    others.owner = machine.platform.userIdentifier + 1;
    watched->attributesAt[home().path("Downloads/a.bin")] = others;
    machine.platform.files = std::move(watched);
    EXPECT_THAT(copies(), IsEmpty());
    filled("Documents/longest.bin", 'x');
    EXPECT_THAT(copies(), ElementsAre(home().path("Documents/longest.bin")));
}

TEST_F(DuplicateCopiesTest, AFileThatChangesHandsMeanwhileIsNoCopyAnyMore) {
    filled("Downloads/a.bin", 'x');
    filled("Downloads/longer.bin", 'x');
    const auto found = duplicateCopies(machine.platform, {}, {});
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_TRUE(found[0].kept.isUnchanged(*machine.platform.files));
    WatchedFiles watched(systemFileManager());
    auto others = found[0].kept.attributes;
    ++others.owner;
    watched.attributesAt[found[0].kept.path] = others;
    EXPECT_FALSE(found[0].kept.isUnchanged(watched));
}

TEST_F(DuplicateCopiesTest, EqualLengthsKeepTheFindersOrderAndLengthCountsCharacters) {
    filled("Downloads/ñññ.bin", 'x');
    filled("Downloads/aaaa.bin", 'x');
    EXPECT_THAT(copies(), ElementsAre(home().path("Downloads/aaaa.bin")));
    filled("Downloads/bbb.bin", 'x');
    EXPECT_THAT(copies(),
                ElementsAre(home().path("Downloads/ñññ.bin"), home().path("Downloads/aaaa.bin")))
        << "downloads come in the order of their paths";
}

TEST_F(DuplicateCopiesTest, OnlyThreeFoldersAndOnlyLargeVisibleFilesCount) {
    filled("Downloads/one.bin", 'x');
    filled("Pictures/one.bin", 'x');
    filled("Documents/.hidden.bin", 'x');
    filled("Documents/.folder/one.bin", 'x');
    filled("Documents/Mail/one.bin", 'x');
    filled("Downloads/small a.bin", 's', 900'000);
    filled("Downloads/small b.bin", 's', 900'000);
    EXPECT_THAT(copies(), IsEmpty());
}

TEST_F(DuplicateCopiesTest, ExcludedFoldersPlayNoPart) {
    filled("Downloads/one.bin", 'x');
    filled("Documents/kept/one.bin", 'x');
    limits.excluded = {home().path("Documents/kept")};
    EXPECT_THAT(copies(), IsEmpty());
    limits.excluded = {home().path("Documents"), home().path("Downloads"), home().path("Desktop")};
    EXPECT_THAT(copies(), IsEmpty());
}

TEST_F(DuplicateCopiesTest, AFileIsNoCopyOfItself) {
    // Two names of one file, and folders that hold one another or are the same.
    const std::string first = filled("Downloads/one.bin", 'x');
    home().folder("Documents");
    std::filesystem::create_hard_link(first, home().path("Documents/one.bin"));
    machine.platform.layout.desktop = home().path("Downloads");
    EXPECT_THAT(copies(), IsEmpty());
    machine.platform.layout.desktop = home().path("Downloads/Desktop");
    filled("Downloads/Desktop/other.bin", 'y');
    EXPECT_THAT(copies(), IsEmpty());
    machine.platform.layout.desktop.clear();
    EXPECT_THAT(copies(), IsEmpty());
}

TEST_F(DuplicateCopiesTest, AFolderThatIsALinkIsNotWalked) {
    filled("Downloads/one.bin", 'x');
    home().link("Documents", home().path("Downloads"));
    EXPECT_THAT(copies(), IsEmpty());
}

TEST_F(DuplicateCopiesTest, WhatAnotherRuleTakesIsNotTheCopyThatStays) {
    const std::string download = filled("Downloads/x.bin", 'x');
    const std::string document = filled("Documents/report.bin", 'x');
    EXPECT_THAT(copies(), ElementsAre(document));
    EXPECT_THAT(copies({download}), ElementsAre(download));
    EXPECT_THAT(copies({home().path("Downloads")}), ElementsAre(download));
    EXPECT_THAT(copies({download, document}), IsEmpty()) << "nothing stays, nothing is a copy";
}

TEST_F(DuplicateCopiesTest, AnOldDownloadAndItsCopyAreNeverMovedBoth) {
    // Large enough for the rule of old downloads; its copy among the documents has to stay.
    const std::string download = filled("Downloads/x.bin", 'x', 51'000'000);
    TempHome::File(download).dated(now() - 400 * day, now() - 400 * day);
    filled("Documents/report.bin", 'x', 51'000'000);
    EXPECT_THAT(run({{"oldDownloads", true}, {"duplicates", true}}), ElementsAre(download));
    EXPECT_TRUE(home().exists("Documents/report.bin"));
}

TEST_F(DuplicateCopiesTest, ACopyWhoseOtherHasGoneMeanwhileStays) {
    filled("Downloads/x.bin", 'x');
    filled("Documents/report.bin", 'x');
    thrownAway("old.iso", 60 * megabyte, 31);
    // The first move fails, and while it does the kept copy is deleted.
    locked = home().path(".Trash/old.iso");
    MaintenanceRules rules(
        machine.platform,
        [&](const std::vector<std::string>& paths, const MaintenanceRules::Sizes& sizes) {
            std::filesystem::remove(home().path("Downloads/x.bin"));
            return move(paths, sizes);
        },
        cleaning, limits);
    EXPECT_THAT(rules.run({{"systemTrash", true}, {"duplicates", true}}), IsEmpty());
    EXPECT_TRUE(home().exists("Documents/report.bin"));
    EXPECT_THAT(calls, SizeIs(2));
}

TEST_F(DuplicateCopiesTest, SizesOfCandidatesAreThoseOfOneCopy) {
    filled("Downloads/x.bin", 'x', 2'000'000);
    filled("Documents/report.bin", 'x', 2'000'000);
    const auto candidates = rules().candidates({{"duplicates", true}});
    ASSERT_THAT(candidates, SizeIs(1));
    EXPECT_EQ(candidates.front().name, "report.bin");
    EXPECT_NEAR(candidates.front().gb, 0.002, 0.0001);
}

}  // namespace
}  // namespace velto
