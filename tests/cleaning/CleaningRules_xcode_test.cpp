#include "CleaningRulesFixture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CleaningRulesXcodeTest : CleaningRulesTest {
    void install() { home().folder("system/Applications/Xcode.app"); }
    std::string support(const std::string& name, std::int64_t bytes, std::int64_t days) {
        return folderOf("Library/Developer/Xcode/iOS DeviceSupport/" + name, bytes, days);
    }

    const std::string derivedData = "Library/Developer/Xcode/DerivedData";
};

TEST_F(CleaningRulesXcodeTest, WithoutXcodeItsFoldersAreNotTouched) {
    folderOf(derivedData, 900'000'000);
    support("16.0", 900'000'000, 900);
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesXcodeTest, XcodeCountsInEitherApplicationsFolder) {
    const std::string path = folderOf(derivedData, 100'000'000, 3);
    const Candidate expected{.ruleID = "xcode",
                             .path = path,
                             .gb = 0.1,
                             .daysOld = 3,
                             .label = "Derived Data de Xcode."};
    home().folder("Applications/Xcode.app");
    EXPECT_THAT(discoverAll(), ElementsAre(expected));
    machine.platform.files->removeAll(home().path("Applications/Xcode.app"));
    EXPECT_THAT(discoverAll(), IsEmpty());
    install();
    EXPECT_THAT(discoverAll(), ElementsAre(expected));
}

TEST_F(CleaningRulesXcodeTest, DerivedDataBelowItsOwnLimitStays) {
    install();
    folderOf(derivedData, 99'999'999);
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesXcodeTest, DeviceSupportIsOldFromItsThreeHundredAndSixtySixthDay) {
    install();
    support("17.0", 60'000'000, 365);
    const std::string old = support("16.4 (20E247) arm64e", 60'000'000, 366);
    EXPECT_THAT(discoverAll(),
                ElementsAre(Candidate{.ruleID = "xcode",
                                      .path = old,
                                      .gb = 0.06,
                                      .daysOld = 366,
                                      .label = "Device support 16.4 (20E247) arm64e."}));
}

TEST_F(CleaningRulesXcodeTest, OldDeviceSupportIsProposedWhateverItsSize) {
    install();
    const std::string path = support("15.0", 0, 900);
    const auto found = discoverAll();
    ASSERT_THAT(paths(found), ElementsAre(path));
    EXPECT_EQ(found[0].gb, 0);
}

TEST_F(CleaningRulesXcodeTest, TheRuleKeepsItsOwnOrderAndTheMergedListSorts) {
    install();
    const std::string small = support("14.0", 1'000'000, 900);
    const std::string large = support("15.0", 900'000'000, 900);
    const std::string derived = folderOf(derivedData, 200'000'000);
    EXPECT_THAT(paths(discover("xcode")), ElementsAre(derived, small, large));
    EXPECT_THAT(paths(discoverAll()), ElementsAre(large, derived, small));
}

TEST_F(CleaningRulesXcodeTest, FilesAndLinksAmongDeviceSupportAreNoFolders) {
    install();
    const std::string folder = layout().xcodeDeviceSupport;
    home()
        .sparse("Library/Developer/Xcode/iOS DeviceSupport/list.plist", 900'000'000)
        .dated(now(), now() - 900 * day);
    home().link("Library/Developer/Xcode/iOS DeviceSupport/linked", home().folder("Documents"));
    files->attributesAt[folder + "/linked"] =
        FileAttributes{.kind = FileKind::symbolicLink, .modified = 0};
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesXcodeTest, AnUnreadableDateIsTakenAsNow) {
    install();
    const std::string path = support("14.0", 60'000'000, 900);
    files->attributesAt[path] = std::nullopt;
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesXcodeTest, WithoutAccessXcodeIsStillLookedAt) {
    install();
    const std::string path = folderOf(derivedData, 200'000'000);
    hasAccess = false;
    EXPECT_THAT(paths(discoverAll()), ElementsAre(path));
}

TEST_F(CleaningRulesXcodeTest, NothingBehindALinkIsProposed) {
    install();
    home().folder("Library");
    home().sparse("disk/Developer/Xcode/DerivedData/data", 200'000'000);
    home().sparse("disk/Developer/Xcode/iOS DeviceSupport/14.0/data", 60'000'000);
    TempHome::File(home().path("disk/Developer/Xcode/iOS DeviceSupport/14.0"))
        .dated(now(), now() - 900 * day);
    home().link("Library/Developer", home().path("disk/Developer"));
    EXPECT_THAT(discoverAll(), IsEmpty());
}

TEST_F(CleaningRulesXcodeTest, ALinuxHomeHasNone) {
    home().folder("Applications/Xcode.app");
    folderOf(derivedData, 200'000'000);
    support("14.0", 60'000'000, 900);
    layout() = HomeLayout::freedesktop(
        home().path(), [](const std::string&) { return std::nullopt; }, "");
    EXPECT_THAT(discover("xcode"), IsEmpty());
    EXPECT_THAT(discoverAll(), IsEmpty());
}

}  // namespace
}  // namespace velto
