#include "maintenance/MaintenanceRules.h"

#include <mutex>

#include "MaintenanceFixture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(MaintenanceRulesTest, WhatWasThrownAwayStaysThirtyWholeDays) {
    thrownAway("thirty.iso", 50 * megabyte, 30);
    thrownAway("almost.iso", 50 * megabyte, 31).dated(now(), now() - 31 * day + 1);
    thrownAway("thirty-one.iso", 50 * megabyte, 31);
    EXPECT_THAT(run({{"systemTrash", true}}), ElementsAre(home().path(".Trash/thirty-one.iso")));
}

TEST_F(MaintenanceRulesTest, SmallThingsStayInTheSystemsTrash) {
    thrownAway("small.iso", 40 * megabyte, 31);
    thrownAway("a byte short.iso", 50 * megabyte - 1, 31);
    home().sparse(".Trash/folder/a", 30 * megabyte);
    home().sparse(".Trash/folder/b", 30 * megabyte);
    TempHome::File(home().path(".Trash/folder")).dated(now(), now() - 40 * day);
    EXPECT_THAT(run({{"systemTrash", true}}), ElementsAre(home().path(".Trash/folder")));
}

TEST_F(MaintenanceRulesTest, ProtectedThingsStayInTheSystemsTrash) {
    thrownAway("Old.photoslibrary", 90 * megabyte, 99);
    thrownAway("MailDrop.zip", 90 * megabyte, 99);
    home().link(".Trash/link", "/");
    EXPECT_THAT(run({{"systemTrash", true}}), IsEmpty());
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(MaintenanceRulesTest, AnUnreadableTrashHasNothing) {
    EXPECT_THAT(run({{"systemTrash", true}}), IsEmpty());
}

TEST_F(MaintenanceRulesTest, NothingIsMovedByRulesThatAreOffOrUnknown) {
    thrownAway("old.iso", 90 * megabyte, 99);
    home().sparse("Library/Caches/com.example.App/data", 90 * megabyte);
    EXPECT_THAT(run({}), IsEmpty());
    EXPECT_THAT(run({{"systemTrash", false}, {"caches", false}, {"other", true}}), IsEmpty());
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(MaintenanceRulesTest, TheRulesComeInTheirOrderAndCachesOfAnyAge) {
    thrownAway("old.iso", 60 * megabyte, 31);
    home().sparse("Downloads/film.mkv", 70 * megabyte).dated(now() - 366 * day, now() - 366 * day);
    home().sparse("Downloads/new.mkv", 70 * megabyte).dated(now(), now());
    home().sparse("Downloads/installer.dmg", 70 * megabyte).dated(now(), now());
    home().sparse("Library/Caches/com.example.App/data", 90 * megabyte).dated(now(), now());
    EXPECT_THAT(run({{"systemTrash", true},
                     {"oldDownloads", true},
                     {"caches", true},
                     {"duplicates", true}}),
                ElementsAre(home().path(".Trash/old.iso"), home().path("Downloads/film.mkv"),
                            home().path("Library/Caches/com.example.App")));
    EXPECT_THAT(calls, SizeIs(1)) << "all at once";
}

TEST_F(MaintenanceRulesTest, WhatTwoRulesOfferIsMovedOnce) {
    // Xcode's data kept among the caches: offered by both rules.
    machine.platform.layout.xcodeApplications = {home().path("Applications/Xcode.app")};
    home().folder("Applications/Xcode.app");
    machine.platform.layout.xcodeDerivedData = home().path("Library/Caches/DerivedData");
    home().sparse("Library/Caches/DerivedData/data", 200 * megabyte);
    EXPECT_THAT(run({{"caches", true}}), ElementsAre(home().path("Library/Caches/DerivedData")));
    EXPECT_THAT(calls, ElementsAre(SizeIs(1)));
}

TEST_F(MaintenanceRulesTest, OneLockedFileKeepsNoOtherFromBeingMoved) {
    thrownAway("a.iso", 60 * megabyte, 31);
    thrownAway("b.iso", 60 * megabyte, 31);
    thrownAway("c.iso", 60 * megabyte, 31);
    locked = home().path(".Trash/b.iso");
    EXPECT_THAT(run({{"systemTrash", true}}),
                ElementsAre(home().path(".Trash/a.iso"), home().path(".Trash/c.iso")));
    EXPECT_THAT(calls, ElementsAre(SizeIs(3), SizeIs(1), SizeIs(1), SizeIs(1)));
    EXPECT_TRUE(home().exists(".Trash/b.iso"));
}

TEST_F(MaintenanceRulesTest, WithoutAccessNothingAsksForTheGuardedFolders) {
    limits.hasAccess = false;
    thrownAway("a.iso", 60 * megabyte, 31);
    home().sparse("Downloads/film.mkv", 70 * megabyte).dated(now() - 400 * day, now() - 400 * day);
    filled("Downloads/one.bin", 'x');
    filled("Documents/other.bin", 'x');
    EXPECT_THAT(run({{"systemTrash", true}, {"oldDownloads", true}, {"duplicates", true}}),
                IsEmpty());
}

struct CareTest : MaintenanceRulesTest {
    void useLinuxHome() {
        machine.platform.layout = HomeLayout::freedesktop(
            home().path(), [](const std::string&) { return std::nullopt; }, "");
    }
    std::string cache(const std::string& path) {
        home().sparse(path + "/data", 90 * megabyte);
        return home().path(path);
    }
    void runs(const std::string& executable) {
        machine.running.add({.bundleIdentifier = "", .bundlePath = "", .executable = executable});
    }
};

TEST_F(CareTest, OnALinuxHomeOnlyCachesThatAreMadeAgainGoUnattended) {
    useLinuxHome();
    const std::string browser = cache(".cache/mozilla");
    for (const char* name : {"rclone/vfs", "borg", "restic", "duplicity", "huggingface",
                             "JetBrains/Idea/LocalHistory", "some-program", "spotify"}) {
        cache(std::string(".cache/") + name);
    }
    EXPECT_THAT(run({{"caches", true}}), ElementsAre(browser));
    EXPECT_TRUE(home().exists(".cache/rclone/vfs/data"));
}

TEST_F(CareTest, OnAMacsHomeTheNeverTakenStayToo) {
    const std::string other = cache("Library/Caches/com.example.App");
    cache("Library/Caches/rclone/vfs");
    cache("Library/Caches/JetBrains");
    EXPECT_THAT(run({{"caches", true}}), ElementsAre(other));
}

TEST_F(CareTest, TheCachesOfRunningApplicationsStay) {
    cache("Library/Caches/com.example.App");
    const std::string other = cache("Library/Caches/com.example.Other");
    machine.running.add({.bundleIdentifier = "com.example.App",
                         .bundlePath = "/Applications/App.app",
                         .executable = "/Applications/App.app/Contents/MacOS/App"});
    EXPECT_THAT(run({{"caches", true}}), ElementsAre(other));

    useLinuxHome();
    cache(".cache/mozilla");
    const std::string thumbnails = cache(".cache/thumbnails");
    runs("/usr/lib/firefox/firefox");
    EXPECT_THAT(run({{"caches", true}}), ElementsAre(thumbnails));
}

/// An application is started while the folders are measured.
class StartingReader final : public DirectoryReader {
public:
    StartingReader(std::unique_ptr<DirectoryReader> reader, std::function<void()> start)
        : reader_(std::move(reader)), start_(std::move(start)) {}

    std::shared_ptr<OpenFolder> open(const std::string& path) override {
        std::call_once(once_, start_);
        return reader_->open(path);
    }
    std::shared_ptr<OpenFolder> openChild(OpenFolder& parent, std::string_view name) override {
        return reader_->openChild(parent, name);
    }
    bool read(OpenFolder& folder, const ReadOptions& options, EntryList& entries) override {
        return reader_->read(folder, options, entries);
    }
    bool status(OpenFolder& folder, std::string_view name, FolderStatus& status) override {
        return reader_->status(folder, name, status);
    }

private:
    std::unique_ptr<DirectoryReader> reader_;
    std::function<void()> start_;
    std::once_flag once_;
};

TEST_F(CareTest, AnApplicationStartedWhileItsCacheIsMeasuredKeepsIt) {
    useLinuxHome();
    cache(".cache/mozilla");
    machine.platform.directories = std::make_unique<StartingReader>(
        std::move(machine.platform.directories), [this] { runs("/usr/lib/firefox/firefox"); });
    EXPECT_THAT(run({{"caches", true}}), IsEmpty());
}

TEST_F(CareTest, WhatTheTrashWouldRefuseSpoilsNoOtherMove) {
    thrownAway("old.iso", 60 * megabyte, 31);
    cache("Library/Caches/com.apple.MailCompanion");
    EXPECT_THAT(run({{"systemTrash", true}, {"caches", true}}),
                ElementsAre(home().path(".Trash/old.iso")));
    EXPECT_THAT(calls, ElementsAre(SizeIs(1))) << "all at once";
}

TEST_F(CareTest, NothingIsTakenThroughALinkInThePlaceOfAFolder) {
    useLinuxHome();
    const std::int64_t old = now() - 400 * day;
    cache("disk/cache/mozilla");
    home().link(".cache", home().path("disk/cache"));
    home().sparse("disk/incoming/film.mkv", 70 * megabyte).dated(old, old);
    home().link("Downloads", home().path("disk/incoming"));
    home().sparse("disk/trash/files/old.iso", 70 * megabyte).dated(old, old);
    home().link(".local/share/Trash", home().path("disk/trash"));
    EXPECT_THAT(run({{"systemTrash", true}, {"oldDownloads", true}, {"caches", true}}), IsEmpty());
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(MaintenanceRulesTest, ACandidateTellsItsNameAndItsSize) {
    thrownAway("old.iso", 60 * megabyte, 31);
    const auto candidates = rules().candidates({{"systemTrash", true}});
    ASSERT_THAT(candidates, SizeIs(1));
    EXPECT_EQ(candidates.front().name, "old.iso");
    EXPECT_DOUBLE_EQ(candidates.front().gb, 0.06);
    EXPECT_THAT(calls, IsEmpty()) << "asking moves nothing";
}

TEST_F(MaintenanceRulesTest, WhatTheFurtherRulesFindIsOfferedToPeopleAlone) {
    machine.platform.layout = HomeLayout::freedesktop(
        home().path(), [](const std::string&) { return std::nullopt; }, "");
    home().sparse("work/shop/node_modules/a/index.js", 90 * megabyte);
    home().text("work/shop/package.json", "{}");
    home().sparse(".npm/_cacache/content-v2/x", 90 * megabyte);
    home().sparse(".cargo/registry/cache/x.crate", 90 * megabyte);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home().path()))
        TempHome::File(entry.path().string()).dated(now() - 400 * day, now() - 400 * day);
    EXPECT_THAT(run({{"caches", true},
                     {"xcode", true},
                     {"oldDownloads", true},
                     {"installers", true},
                     {"systemTrash", true},
                     {"dups", true}}),
                IsEmpty());
    EXPECT_TRUE(home().exists("work/shop/node_modules/a/index.js"));
    EXPECT_TRUE(home().exists(".npm/_cacache/content-v2/x"));
}

}  // namespace
}  // namespace velto
