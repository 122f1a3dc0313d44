#include <sys/stat.h>

#include <fstream>

#include "cleaning/further/FurtherFixture.h"
#include "support/ordinary_user.h"
#include "support/system_platform.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Doubt = FurtherItem::Reason;

struct FurtherDiscoveryTest : FurtherFixture {
    void project(const std::string& folder) {
        file(folder + "/package.json");
        file(folder + "/node_modules/a/index.js");
    }
    Doubt reasonOf(const std::string& path) {
        for (const FurtherItem& item : items()) {
            if (item.path == home().path(path)) return item.reason;
        }
        ADD_FAILURE() << path << " is not found";
        return Doubt::unknown;
    }
};

/// The machine's own reader, for which the folder of one inode begins another volume.
class VolumeBelow final : public DirectoryReader {
public:
    explicit VolumeBelow(std::uint64_t inode) : inode_(inode) {}
    std::shared_ptr<OpenFolder> open(const std::string& path) override {
        return reader_->open(path);
    }
    std::shared_ptr<OpenFolder> openChild(OpenFolder& parent, std::string_view name) override {
        return reader_->openChild(parent, name);
    }
    bool read(OpenFolder& folder, const ReadOptions& options, EntryList& entries) override {
        return reader_->read(folder, options, entries);
    }
    bool status(OpenFolder& folder, std::string_view name, FolderStatus& status) override {
        if (!reader_->status(folder, name, status)) return false;
        if (status.inode == inode_) ++status.device;
        return true;
    }

private:
    const std::unique_ptr<DirectoryReader> reader_ = systemDirectoryReader();
    const std::uint64_t inode_;
};

std::uint64_t inodeOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_ino;
}

TEST_F(FurtherDiscoveryTest, AnotherVolumeBelowTheHomeIsNeitherSearchedNorProposed) {
    project("work/shop");
    project("disk/old");
    age(200);
    EXPECT_THAT(taken(), ElementsAre("disk/old/node_modules", "work/shop/node_modules"));
    machine.platform.directories = std::make_unique<VolumeBelow>(inodeOf(home().path("disk")));
    EXPECT_THAT(taken(), ElementsAre("work/shop/node_modules"));
    machine.platform.directories =
        std::make_unique<VolumeBelow>(inodeOf(home().path("work/shop/node_modules/a")));
    EXPECT_THAT(taken(), ElementsAre("disk/old/node_modules")) << "one that holds a volume";
}

TEST_F(FurtherDiscoveryTest, SizesAreWhatTheFilesTakeUpOnDisk) {
    home().sparse(".npm/_cacache/sparse", 1'000'000'000);
    home().file(".npm/_cacache/real", 1'000'000);
    const auto found = items();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_GE(found[0].bytes, 1'000'000);
    EXPECT_LT(found[0].bytes, 1'200'000);
}

TEST_F(FurtherDiscoveryTest, AFileOfSeveralNamesCountsOnceAndStaysWhereItHasOthersElsewhere) {
    home().file(".local/share/pnpm/store/v3/files/shared", 1'000'000);
    home().file(".local/share/pnpm/store/v3/files/own", 500'000);
    home().folder("work");
    std::filesystem::create_hard_link(home().path(".local/share/pnpm/store/v3/files/shared"),
                                      home().path("work/shared"));
    std::filesystem::create_hard_link(home().path(".local/share/pnpm/store/v3/files/own"),
                                      home().path(".local/share/pnpm/store/v3/files/own2"));
    const auto found = items();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_LT(found[0].bytes, 1'700'000) << "each once";
    EXPECT_GE(found[0].bytes, 1'500'000);
    EXPECT_GE(found[0].linked, 1'000'000);
    EXPECT_LT(found[0].linked, 1'200'000) << "both names of the other one go";
}

TEST_F(FurtherDiscoveryTest, WhatIsTooSmallToMatterIsLeftOut) {
    smallest = FurtherDiscovery::smallestItem;
    home().file(".npm/_cacache/a", 9'000'000);
    EXPECT_THAT(taken(), IsEmpty());
    home().file(".npm/_cacache/b", 2'000'000);
    EXPECT_THAT(taken(), ElementsAre(".npm/_cacache"));
}

TEST_F(FurtherDiscoveryTest, AProjectIsIdleByTheNewestChangeAnywhereInIt) {
    project("work/shop");
    file("work/shop/src/deep/main.ts");
    age(90);
    EXPECT_THAT(taken(), ElementsAre("work/shop/node_modules"));
    EXPECT_EQ(items()[0].days, 90);
    age("work/shop/src/deep/main.ts", 89);
    EXPECT_THAT(taken(), IsEmpty()) << "somebody works on it";
    age("work/shop/src/deep/main.ts", 90);
    age("work/shop/node_modules/a/index.js", 3);
    EXPECT_THAT(taken(), IsEmpty()) << "something was installed";
    age("work/shop/node_modules/a/index.js", 90);
    age("work/shop/src", 3);
    EXPECT_THAT(taken(), IsEmpty()) << "a file was deleted";
}

TEST_F(FurtherDiscoveryTest, WhatWasMovedAwayAndPutBackIsStillIdle) {
    project("work/shop");
    age(200);
    std::filesystem::rename(home().path("work/shop/node_modules"), home().path("away"));
    std::filesystem::rename(home().path("away"), home().path("work/shop/node_modules"));
    EXPECT_THAT(taken(), ElementsAre("work/shop/node_modules"));
}

TEST_F(FurtherDiscoveryTest, ACommitOfTodayMakesAProjectBusy) {
    project("work/shop");
    file("work/shop/.git/index");
    age(200);
    EXPECT_THAT(taken(), ElementsAre("work/shop/node_modules"));
    age("work/shop/.git/index", 1);
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(FurtherDiscoveryTest, WhatHappensBesideAProjectIsNotItsOwn) {
    project("work/shop");
    project("work/shop-new");
    file("work/plan.txt");
    age(200);
    age("work/plan.txt", 1);
    age("work/shop-new/package.json", 1);
    EXPECT_THAT(taken(), ElementsAre("work/shop/node_modules"));
}

TEST_F(FurtherDiscoveryTest, AProjectInAProjectIsItsOwn) {
    project("work/mono");
    project("work/mono/packages/a");
    age(200);
    EXPECT_THAT(taken(),
                ElementsAre("work/mono/node_modules", "work/mono/packages/a/node_modules"));
    age("work/mono/packages/a/package.json", 1);
    EXPECT_THAT(taken(), IsEmpty()) << "the one around it is worked on, too";
}

TEST_F(FurtherDiscoveryTest, NoProjectsAreLookedForInHiddenFoldersAndApplications) {
    project(".nvm/versions/node/lib");
    project("Applications/Editor.app/Contents/Resources");
    project("tools/Editor.app/Contents/Resources");
    project(".local/share/tool");
    age(200);
    EXPECT_THAT(taken(), IsEmpty());
    useMacHome();
    project("Library/Application Support/Editor");
    age(200);
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(FurtherDiscoveryTest, ALinkIsNeitherTakenNorFollowed) {
    file("elsewhere/cache/index-v5/x");
    home().folder(".npm");
    home().link(".npm/_cacache", home().path("elsewhere/cache"));
    project("work/shop");
    home().link("other", home().path("work"));
    home().folder("linked");
    file("linked/package.json");
    home().link("linked/node_modules", home().path("work/shop/node_modules"));
    age(200);
    EXPECT_THAT(taken(), ElementsAre("work/shop/node_modules"));
}

TEST_F(FurtherDiscoveryTest, ALinkOnTheWayToAPlaceEndsIt) {
    file("elsewhere/_cacache/index-v5/x");
    home().link(".npm", home().path("elsewhere"));
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(FurtherDiscoveryTest, ALinkInsideCountsByItselfAlone) {
    home().file("films/long", 5'000'000);
    file(".npm/_cacache/x");
    home().link(".npm/_cacache/films", home().path("films"));
    const auto found = items();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_LT(found[0].bytes, 100'000);
}

TEST_F(FurtherDiscoveryTest, WhatIsExcludedIsNeverTakenNorWhatHoldsIt) {
    file(".npm/_cacache/a/x");
    file(".cargo/registry/cache/y");
    project("work/shop");
    age(200);
    EXPECT_THAT(taken(),
                ElementsAre(".cargo/registry/cache", ".npm/_cacache", "work/shop/node_modules"));
    excluded = {home().path(".npm/_cacache/a"), home().path(".cargo"), home().path("work/shop")};
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(FurtherDiscoveryTest, WhatRunsIsOnlyPossible) {
    file(".npm/_cacache/x");
    file(".cache/thumbnails/large/a.png");
    file(".var/app/org.gimp.GIMP/cache/babl/x");
    EXPECT_EQ(reasonOf(".npm/_cacache"), Doubt::madeAgain);
    machine.running.add({.bundlePath = "", .executable = "/usr/bin/node", .script = ""});
    EXPECT_EQ(reasonOf(".npm/_cacache"), Doubt::running);
    EXPECT_EQ(reasonOf(".cache/thumbnails"), Doubt::madeAgain);
    EXPECT_EQ(reasonOf(".var/app/org.gimp.GIMP/cache/babl"), Doubt::unknown);
    machine.running.add({.executable = "/app/bin/gimp", .flatpak = "org.gimp.GIMP"});
    EXPECT_EQ(reasonOf(".var/app/org.gimp.GIMP/cache/babl"), Doubt::running);
}

TEST_F(FurtherDiscoveryTest, AProgramThatWasStartedFromInsideMakesItBusy) {
    file("work/engine/Cargo.toml");
    file("work/engine/target/debug/engine");
    age(200);
    EXPECT_EQ(reasonOf("work/engine/target"), Doubt::unknown);
    machine.running.add({.executable = home().path("work/engine/target/debug/engine")});
    EXPECT_EQ(reasonOf("work/engine/target"), Doubt::running);
}

TEST_F(FurtherDiscoveryTest, WhatCannotBeReadWholeIsNotCertain) {
    file(".npm/_cacache/x");
    home().folder(".npm/_cacache/closed");
    const int result = asOrdinaryUser({home().path()}, [&] {
        const std::filesystem::path closed = home().path(".npm/_cacache/closed");
        std::filesystem::permissions(closed, std::filesystem::perms::none);
        const auto found = items();
        std::filesystem::permissions(closed, std::filesystem::perms::owner_all);
        return found.size() == 1 && found[0].reason == Doubt::unread ? 0 : 1;
    });
    EXPECT_EQ(result, 0);
}

TEST_F(FurtherDiscoveryTest, WithoutAccessNothingBehindTheGateIsLookedAt) {
    useMacHome();
    project("Documents/shop");
    project("work/shop");
    file("Library/Application Support/MobileSync/Backup/0/Manifest.db");
    age(200);
    hasAccess = false;
    EXPECT_THAT(taken(), ElementsAre("work/shop/node_modules"));
    EXPECT_EQ(groups().size(), 1u) << "nor is a guarded folder only shown";
    hasAccess = true;
    EXPECT_THAT(taken(), ElementsAre("Documents/shop/node_modules", "work/shop/node_modules"));
    EXPECT_EQ(groups().size(), 2u);
}

TEST_F(FurtherDiscoveryTest, BackupsOfDevicesAreMeasuredAndNeverOffered) {
    useMacHome();
    home().file("Library/Application Support/MobileSync/Backup/0/Manifest.db", 3'000'000);
    const auto found = groups();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].rule->id, "device-backups");
    EXPECT_THAT(found[0].items, IsEmpty());
    EXPECT_GE(found[0].bytes, 3'000'000);
    EXPECT_LT(found[0].bytes, 3'100'000);
}

TEST_F(FurtherDiscoveryTest, TheTrashAndTheProgramsOwnDataAreNotSearched) {
    project(".local/share/Trash/files/shop");
    project(".local/share/Velto/Trash/op/shop");
    age(200);
    EXPECT_THAT(taken(), IsEmpty());
    useMacHome();
    project(".Trash/shop");
    project("Library/Application Support/Velto/Trash/op/shop");
    age(200);
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(FurtherDiscoveryTest, WhatIsProtectedByItsNameIsLeftOut) {
    project("work/Mail/shop");
    age(200);
    EXPECT_THAT(taken(), IsEmpty()) << "the trash would refuse it";
}

TEST_F(FurtherDiscoveryTest, WhatIsNeverTakenIsLeftOutWhicheverRuleNamesIt) {
    file(".var/app/com.spotify.Client/cache/spotify/Storage/song");
    file(".var/app/org.a.B/cache/JetBrains/a");
    file(".var/app/org.a.B/cache/other/a");
    EXPECT_THAT(taken(), ElementsAre(".var/app/org.a.B/cache/other"));
}

TEST_F(FurtherDiscoveryTest, CachesThatLieOutsideTheHomeAreNotTouched) {
    const TempHome elsewhere;
    elsewhere.path();
    machine.platform.layout.caches = elsewhere.path();
    std::filesystem::create_directories(elsewhere.path("pip/http"));
    std::ofstream(elsewhere.path("pip/http/x")) << "x";
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(FurtherDiscoveryTest, ACancelledSearchEnds) {
    project("work/shop");
    age(200);
    CancellationFlag cancelled;
    cancelled.cancel();
    EXPECT_THAT(discovery().discover(cancelled), IsEmpty());
}

TEST_F(FurtherDiscoveryTest, ThePlacesAreNotChanged) {
    project("work/shop");
    file(".npm/_cacache/x");
    age(200);
    taken();
    EXPECT_TRUE(home().exists("work/shop/node_modules/a/index.js"));
    EXPECT_TRUE(home().exists(".npm/_cacache/x"));
}

}  // namespace
}  // namespace velto
