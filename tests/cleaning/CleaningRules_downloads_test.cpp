#include "CleaningRulesFixture.h"

#include "platform/values/text.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

struct CleaningRulesDownloadsTest : CleaningRulesTest {
    void useLinuxHome(std::string_view userDirs) {
        layout() = HomeLayout::freedesktop(
            home().path(), [](const std::string&) { return std::nullopt; }, userDirs);
    }
};

TEST_F(CleaningRulesDownloadsTest, AYearIsMoreThan365Days) {
    download("last year.zip", 60'000'000, 365);
    const std::string old = download("older.zip", 60'000'000, 366).path();
    EXPECT_THAT(discoverAll(),
                ElementsAre(Candidate{.ruleID = "oldDownloads",
                                      .path = old,
                                      .gb = 0.06,
                                      .daysOld = 366,
                                      .label = "«older.zip», sin abrir más de un año."}));
}

TEST_F(CleaningRulesDownloadsTest, TheLastSecondOfTheYearDecides) {
    const TempHome::File file = download("a.zip", 60'000'000, 0);
    file.dated(now() - 366 * day + 1, 0);
    EXPECT_THAT(discoverAll(), IsEmpty());
    file.dated(now() - 366 * day, 0);
    EXPECT_THAT(paths(discoverAll()), ElementsAre(file.path()));
}

TEST_F(CleaningRulesDownloadsTest, OpeningAFileKeepsItHoweverOldItIs) {
    download("read yesterday.zip", 60'000'000, 0).dated(now() - day, now() - 4000 * day);
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesDownloadsTest, WithoutAnAccessDateTheModificationDateCounts) {
    const std::string path = download("a.zip", 60'000'000, 0).path();
    files->attributesAt[path] = FileAttributes{
        .kind = FileKind::regular,
        .logicalSize = 60'000'000,
        .modified = machine.clock.time - 400 * 86400.0,
        .accessed = 0,
    };
    const auto found = discoverAll();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].daysOld, 400);
}

TEST_F(CleaningRulesDownloadsTest, TheByteAtTheLimitDecides) {
    const std::string enough = download("enough.bin", 50'000'000, 500).path();
    download("less.bin", 49'999'999, 500);
    const std::string installer = download("enough.dmg", 50'000'000, 0).path();
    download("less.dmg", 49'999'999, 0);
    EXPECT_THAT(paths(discoverAll()), ElementsAre(enough, installer));
}

TEST_F(CleaningRulesDownloadsTest, ASmallInstallerStays) {
    download("tool.dmg", 10'000'000, 900);
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesDownloadsTest, AnInstallerIsProposedWhateverItsAge) {
    const std::string path = download("New App.DMG", 80'000'000, 2).path();
    EXPECT_THAT(discoverAll(),
                ElementsAre(Candidate{.ruleID = "installers",
                                      .path = path,
                                      .gb = 0.08,
                                      .daysOld = 2,
                                      .label = "Instalador «New App.DMG» ya usado."}));
}

TEST_F(CleaningRulesDownloadsTest, OnlyTheExtensionMakesAnInstaller) {
    download("dmg", 80'000'000, 2);
    download(".dmg", 80'000'000, 2);
    download("app.dmg.part", 80'000'000, 2);
    download("app.deb", 80'000'000, 2);
    const std::string package = download(".hidden.pkg", 80'000'000, 2).path();
    EXPECT_THAT(paths(discoverAll()), ElementsAre(package));
}

TEST_F(CleaningRulesDownloadsTest, APackageThatIsAFolderIsNoInstaller) {
    folderOf("Downloads/Big.pkg", 900'000'000, 900);
    EXPECT_THAT(discoverAll(), IsEmpty());
    files->attributesAt[home().path("Downloads/Big.pkg")] =
        FileAttributes{.kind = FileKind::folder, .logicalSize = 90'000'000};
    EXPECT_THAT(discoverAll(), IsEmpty()) << "not even one whose own entry is large";
}

TEST_F(CleaningRulesDownloadsTest, ALinkIsItselfAndNotTheFileBehindIt) {
    home().sparse("Movies/film.mov", 900'000'000).dated(now() - 900 * day, now() - 900 * day);
    home().link("Downloads/film.mov", home().path("Movies/film.mov"));
    home().link("Downloads/film.dmg", home().path("Movies/film.mov"));
    home().link("Downloads/dangling.dmg", "nowhere");
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesDownloadsTest, OnlyTheFirstLevelIsLookedAt) {
    download("old project/film.zip", 900'000'000, 900);
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesDownloadsTest, AnOldInstallerIsListedOnceAsAnOldDownload) {
    const std::string path = download("old.dmg", 60'000'000, 500).path();
    EXPECT_THAT(discoverAll(),
                ElementsAre(Candidate{.ruleID = "oldDownloads",
                                      .path = path,
                                      .gb = 0.06,
                                      .daysOld = 500,
                                      .label = "«old.dmg», sin abrir más de un año."}));
    EXPECT_THAT(paths(discover("installers")), ElementsAre(path));
}

TEST_F(CleaningRulesDownloadsTest, WithoutAccessTheCachesThatTheSystemGuardsAreNotMeasured) {
    const std::string guarded = folderOf("Library/Caches/com.apple.HomeKit", 60'000'000);
    const std::string cache = folderOf("Library/Caches/app", 60'000'000);
    hasAccess = false;
    EXPECT_THAT(paths(discover("caches")), ElementsAre(cache));
    hasAccess = true;
    EXPECT_THAT(paths(discover("caches")), UnorderedElementsAre(cache, guarded));
}

TEST_F(CleaningRulesDownloadsTest, WithoutAccessTheDownloadsAreNotEvenLookedAt) {
    const std::string cache = folderOf("Library/Caches/app", 60'000'000);
    download("old.dmg", 60'000'000, 500);
    hasAccess = false;
    EXPECT_THAT(paths(discoverAll()), ElementsAre(cache));
    for (const std::string& path : files->looked()) {
        EXPECT_FALSE(isAtOrBelow(path, layout().downloads)) << path;
    }
    hasAccess = true;
    EXPECT_EQ(discoverAll().size(), 2u) << "asked anew each time";
}

TEST_F(CleaningRulesDownloadsTest, AFileThatCannotBeReadCountsNothing) {
    const std::string path = download("old.dmg", 60'000'000, 500).path();
    files->attributesAt[path] = std::nullopt;
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesDownloadsTest, ANameThatIsNoTextIsProposedLikeAnyOther) {
    if (!makeFolder("Downloads/caf\xE9")) GTEST_SKIP() << "this file system has no such names";
    const std::string path = download("caf\xE9.dmg", 60'000'000, 500).path();
    const auto found = discoverAll();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].path, path);
}

TEST_F(CleaningRulesDownloadsTest, ANameIsShownAsItIs) {
    const std::string name = "una \"cosa\"\n{}\\ <b>.zip";
    download(name, 60'000'000, 500);
    const auto found = discoverAll();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].label, "«" + name + "», sin abrir más de un año.");
}

TEST_F(CleaningRulesDownloadsTest, ADownloadsFolderThatCannotBeListedProposesNothing) {
    download("old.dmg", 60'000'000, 500);
    files->unlistable.insert(layout().downloads);
    EXPECT_THAT(discover("oldDownloads"), IsEmpty());
    EXPECT_THAT(discover("installers"), IsEmpty());
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesDownloadsTest, ALinuxHomesInstallersComeFromItsOwnFolderWithItsOwnKinds) {
    useLinuxHome("XDG_DOWNLOAD_DIR=\"$HOME/Descargas\"\n");
    std::vector<std::string> expected;
    for (const char* name :
         {"a.dmg", "b.pkg", "c.deb", "d.rpm", "e.AppImage", "f.flatpakref", "g.run"}) {
        const TempHome::File file = home().sparse(std::string("Descargas/") + name, 50'000'000);
        expected.push_back(file.dated(now(), now()).path());
    }
    home().sparse("Descargas/h.zip", 50'000'000).dated(now(), now());
    download("not here.deb", 50'000'000, 500);
    EXPECT_EQ(paths(discoverAll()), expected);
}

TEST_F(CleaningRulesDownloadsTest, ALinkInThePlaceOfDownloadsLeadsToNothing) {
    home().sparse("disk/incoming/old.dmg", 60'000'000).dated(now() - 900 * day, now() - 900 * day);
    home().link("Downloads", home().path("disk/incoming"));
    EXPECT_THAT(discoverAll(), IsEmpty()) << "the trash takes nothing through a link";
}

TEST_F(CleaningRulesDownloadsTest, ALinuxHomeWithoutADownloadsFolderHasNoDownloads) {
    useLinuxHome("XDG_DOWNLOAD_DIR=\"$HOME/\"\n");
    home().sparse("old.deb", 60'000'000).dated(now() - 900 * day, now() - 900 * day);
    EXPECT_THAT(discoverAll(), IsEmpty());
}

}  // namespace
}  // namespace velto
