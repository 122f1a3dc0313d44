#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "analysis/ExclusionService.h"
#include "analysis/PermissionService.h"
#include "analysis/ScanCache.h"
#include "support/TestPlatform.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* cachePath = "Library/Application Support/Velto/lastScan.json";
constexpr const char* exclusionsPath = "Library/Application Support/Velto/exclusions.json";

struct ScanCacheTest : testing::Test {
    TestPlatform machine;
    ScanCache cache{*machine.platform.files, machine.platform.layout};
};

TEST_F(ScanCacheTest, WhatWasSavedComesBack) {
    DiskState state;
    state.total = 7;
    cache.save(state, 123.5);
    const auto entry = cache.load();
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->ts, 123.5);
    EXPECT_EQ(entry->state, state);
    EXPECT_TRUE(machine.home.read(cachePath).starts_with("{\"state\":{\"cats\":"));
}

TEST_F(ScanCacheTest, OfTwoSavesOnlyTheSecondStays) {
    cache.save(DiskState{}, 1);
    cache.save(DiskState{}, 2);
    EXPECT_EQ(cache.load()->ts, 2);
    EXPECT_THAT(machine.platform.files->list(machine.platform.layout.dataFolder),
                ElementsAre("lastScan.json"));
}

TEST_F(ScanCacheTest, DamagedFilesCountAsNoAnalysisAndAreReplaced) {
    cache.save(DiskState{}, 5);
    const std::string good = machine.home.read(cachePath);
    const std::string withoutTs = good.substr(0, good.find(",\"ts\"")) + "}";
    for (const std::string& bad :
         {std::string(), std::string("{"), std::string("[]"), std::string("{\"ts\":1}"), withoutTs,
          std::string("{\"ts\":\"1\",\"state\":{}}"), good.substr(0, good.size() / 2)}) {
        machine.home.text(cachePath, bad);
        EXPECT_FALSE(cache.load()) << bad;
    }
    cache.save(DiskState{}, 6);
    EXPECT_EQ(cache.load()->ts, 6);
}

TEST_F(ScanCacheTest, NothingSavedIsNoAnalysis) { EXPECT_FALSE(cache.load()); }

TEST_F(ScanCacheTest, AFolderOutOfReachIsNoAnalysisAndSavingIsSilent) {
    machine.home.text("Library/Application Support", "a file where the folder should be");
    EXPECT_FALSE(cache.load());
    cache.save(DiskState{}, 1);  // silent
    EXPECT_FALSE(cache.load());
}

struct ExclusionTest : testing::Test {
    TestPlatform machine;
    ExclusionService make() { return {*machine.platform.files, machine.platform.layout}; }
};

TEST_F(ExclusionTest, AFolderCoversWhatIsInsideButNotItsNamesake) {
    auto exclusions = make();
    exclusions.add("/h/Music");
    EXPECT_TRUE(exclusions.isExcluded("/h/Music"));
    EXPECT_TRUE(exclusions.isExcluded("/h/Music/a/b.mp3"));
    EXPECT_FALSE(exclusions.isExcluded("/h/Musicals"));
    EXPECT_FALSE(exclusions.isExcluded("/h/music"));
}

TEST_F(ExclusionTest, TwiceOrBelowAnExcludedFolderAddsNothing) {
    auto exclusions = make();
    exclusions.add("/h/Music");
    exclusions.add("/h/Music");
    exclusions.add("/h/Music/a");
    EXPECT_THAT(exclusions.paths(), ElementsAre("/h/Music"));
}

TEST_F(ExclusionTest, TheListSurvivesTheProgram) {
    make().add("/h/b");
    auto second = make();
    second.add("/h/a");
    EXPECT_THAT(make().paths(), ElementsAre("/h/b", "/h/a"));
    second.remove("/h/b");
    EXPECT_THAT(make().paths(), ElementsAre("/h/a"));
    second.remove("/h/unknown");
    EXPECT_THAT(make().paths(), ElementsAre("/h/a"));
}

TEST_F(ExclusionTest, ADamagedListIsEmptyAndReplacedAtTheNextSave) {
    for (const char* bad : {"{", "{\"a\":1}", "[1]", "\"x\"", ""}) {
        machine.home.text(exclusionsPath, bad);
        EXPECT_THAT(make().paths(), IsEmpty()) << bad;
    }
    make().add("/h/a");
    EXPECT_EQ(machine.home.read(exclusionsPath), "[\"/h/a\"]");
}

TEST_F(ExclusionTest, WhatIsNoAbsolutePathExcludesNothing) {
    machine.home.text(exclusionsPath, R"(["","Music","/h/a","./b"])");
    ExclusionService exclusions = make();
    EXPECT_THAT(exclusions.paths(), ElementsAre("/h/a"));
    EXPECT_FALSE(exclusions.isExcluded("/h/b"));
    for (const char* path : {"", "Music", "~"})
        exclusions.add(path);
    EXPECT_THAT(exclusions.paths(), ElementsAre("/h/a"));
}

struct PermissionTest : testing::Test {
    TestPlatform machine;
    PermissionService permissions{machine.platform};
};

TEST_F(PermissionTest, WithoutAnyProbeFolderTheAnswerIsNo) {
    EXPECT_FALSE(permissions.hasAccess());
    EXPECT_THAT(machine.log.lines(),
                ElementsAre("Velto ▶ permiso de disco: sin rutas de prueba legibles en este Mac"));
}

TEST_F(PermissionTest, TheFirstReadableFolderGrants) {
    const std::string tcc = machine.home.folder("Library/Application Support/com.apple.TCC");
    EXPECT_TRUE(permissions.hasAccess());
    EXPECT_THAT(machine.log.lines(),
                ElementsAre("Velto ▶ permiso de disco: concedido (lee " + tcc + ")"));
}

TEST_F(PermissionTest, AMissingFolderIsPassedOverAndADeniedOneEndsTheSearch) {
    // A file in a folder's place is refused for another reason than being absent.
    const std::string mail = machine.home.text("Library/Mail", "x").path();
    machine.home.folder("Library/Messages");
    EXPECT_FALSE(permissions.hasAccess());
    EXPECT_THAT(machine.log.lines(),
                ElementsAre("Velto ▶ permiso de disco: denegado al leer " + mail + " (código 20)"));
}

TEST_F(PermissionTest, NothingIsRemembered) {
    EXPECT_FALSE(permissions.hasAccess());
    machine.grantAccess();
    EXPECT_TRUE(permissions.hasAccess());
}

TEST_F(PermissionTest, AHomeWithoutAPrivacyGateIsOpen) {
    machine.platform.layout = HomeLayout::freedesktop(
        machine.home.path(), [](const std::string&) { return std::nullopt; }, "");
    EXPECT_TRUE(permissions.hasAccess());
    EXPECT_THAT(machine.log.lines(), IsEmpty());
}

TEST_F(PermissionTest, ResettingReportsTheToolsOutcome) {
    EXPECT_TRUE(permissions.resetGrant());
    EXPECT_TRUE(machine.log.holds("Velto ▶ permiso restablecido (tccutil 0)"));
    machine.tools.result.exitStatus = 70;
    EXPECT_FALSE(permissions.resetGrant());
    EXPECT_TRUE(machine.log.holds("Velto ▶ permiso restablecido (tccutil 70)"));
    machine.tools.result = {.started = false, .startError = "no such tool"};
    EXPECT_FALSE(permissions.resetGrant());
    EXPECT_TRUE(machine.log.holds("Velto ▶ no se pudo restablecer el permiso: no such tool"));
}

}  // namespace
}  // namespace velto
