#include "analysis/Measurement.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "analysis/MeasurementFile.h"
#include "analysis/ScannerFixture.h"
#include "analysis/list_details.h"
#include "support/TempHome.h"
#include "support/TestPlatform.h"
#include "support/system_platform.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const Measurement sample{
    .total = 1000,
    .free = 300,
    .reserved = 50,
    .purgeable = 20,
    .home = 400,
    .hidden = 30,
    .volumes = {{.path = "/h/stick", .used = 7}, {.path = "/h/nas", .used = {}}},
    .withheld = {"/h/Desktop"},
    .excluded = {"/h/caf\xe9"},
    .unreadable = {.count = 3, .paths = {"/h/locked"}},
    .compared = {.complete = false, .left = 12}};

TEST(Measurement, TheRestIsWhatNoPartExplains) {
    EXPECT_EQ(sample.outside(), 220);
    EXPECT_EQ((Measurement{.total = 100, .free = 90, .home = 20}).outside(), 0);
}

TEST(Measurement, ComesBackAsItWasStored) {
    EXPECT_EQ(measurementFromJson(toJson(sample)), sample);
    EXPECT_EQ(measurementFromJson(toJson(Measurement())), Measurement());
}

FolderTree tree() {
    const auto folder = [](std::uint32_t number, std::uint32_t parent, std::string_view name,
                           FolderFacts facts) {
        return FolderTreeBuilder::Entry{
            .number = number, .parent = parent, .name = name, .facts = facts};
    };
    return FolderTreeBuilder::build(
        {folder(0, FolderTreeBuilder::noParent, "/h", {.ownBytes = 100, .unreadable = 1}),
         folder(1, 0, ".hidden", {.ownBytes = 300}),
         folder(2, 0, "locked", {.state = FolderState::unreadable}),
         folder(3, 0, "withheld", {.state = FolderState::withheld})});
}

TEST(Measurement, WhatTheFoldersHoldBesideTheCategoriesIsHidden) {
    Measurement measurement{.home = 60};
    addFolders(measurement, tree(), 300);
    EXPECT_EQ(measurement.home, 60);
    EXPECT_EQ(measurement.hidden, 340) << "with the folders themselves";
}

TEST(Measurement, FilesWithSeveralNamesDoNotTakeUpMoreThanTheFolders) {
    Measurement measurement{.home = 900};
    addFolders(measurement, tree(), 300);
    EXPECT_EQ(measurement.home, 100);
    EXPECT_EQ(measurement.hidden, 300);
}

TEST(Measurement, ALibraryOnAnotherDiskIsMeasuredAndNoPartOfThisOne) {
    const auto root = [](std::uint32_t number, std::string_view path, std::int64_t bytes) {
        return FolderTreeBuilder::Entry{.number = number,
                                        .parent = FolderTreeBuilder::noParent,
                                        .name = path,
                                        .facts = {.ownBytes = bytes}};
    };
    const FolderTree folders = FolderTreeBuilder::build(
        {root(0, "/h", 250), root(1, "/h/.cache", 200), root(2, "/h/.var/app", 30)});
    Measurement measurement{
        .total = 1000,
        .free = 700,
        .home = 480,
        .volumes = {{.path = "/h/.cache", .used = 220}, {.path = "/h/.va", .used = 1}}};
    addFolders(measurement, folders, 0);
    EXPECT_EQ(measurement.home, 280);
    EXPECT_EQ(measurement.hidden, 0);
    EXPECT_EQ(measurement.outside(), 20);
    EXPECT_THAT(measurement.volumes, ElementsAre(MountedVolume{.path = "/h/.va", .used = 1}));
}

TEST(Measurement, FoldersThatCouldNotBeReadAreNamed) {
    Measurement measurement;
    addFolders(measurement, tree(), 0);
    EXPECT_THAT(measurement.unreadable.paths, ElementsAre("/h", "/h/locked"));
}

struct StoredMeasurement : testing::Test {
    TestPlatform machine;
    MeasurementFile file{*machine.platform.files, machine.platform.layout};
    const std::string path = "Library/Application Support/Velto/measurement.json";

    void SetUp() override {
        machine.platform.files->createFolders(machine.platform.layout.dataFolder);
    }
};

TEST_F(StoredMeasurement, BelongsToItsAnalysisAlone) {
    file.save(sample, 1'700'000'000.25);
    EXPECT_EQ(file.load(1'700'000'000.25), sample);
    EXPECT_FALSE(file.load(1'700'000'000));
}

TEST_F(StoredMeasurement, ADamagedOneIsNone) {
    for (const std::string text :
         {"", "{}", "[]", R"({"ts":1,"measurement":{}})", R"({"ts":"1","measurement":{}})"}) {
        machine.home.text(path, text);
        EXPECT_FALSE(file.load(1)) << text;
    }
    machine.home.text(path, R"({"ts":1,"measurement":)" + toJson(sample).dump() + "}");
    EXPECT_EQ(file.load(1), sample);
}

TEST_F(StoredMeasurement, AnEndlessOneIsNone) {
    std::string text = R"({"ts":1,"measurement":)" + toJson(sample).dump() + "}";
    text.append(5 << 20, ' ');
    machine.home.text(path, text);
    EXPECT_FALSE(file.load(1));
}

TEST(ListDetails, AreOfFilesThatAreThere) {
    TempHome home;
    const auto files = systemFileManager();
    const std::string there = home.text("there", std::string(5000, 'x')).path();
    const auto details = listDetails({{.path = there}, {.path = home.path("gone")}},
                                     {{.id = "g", .paths = {there, home.path("gone")}}}, *files);
    EXPECT_THAT(details.files, SizeIs(1));
    EXPECT_EQ(details.files.at(there), files->attributes(there)->allocatedSize);
    EXPECT_EQ(details.copies, (ListDetails::Sizes{{there, 5000}}));
    EXPECT_THAT(details.linked, IsEmpty());
}

TEST(ListDetails, NamesOfOneFileStandTogetherInTheOrderOfTheGroup) {
    TempHome home;
    const auto files = systemFileManager();
    const std::string a = home.text("a", "same").path();
    const std::string b = home.text("b", "same").path();
    const std::string c = home.path("c");
    std::filesystem::create_hard_link(a, c);
    const auto details = listDetails({}, {{.id = "g", .paths = {c, b, a}}}, *files);
    ASSERT_THAT(details.linked, SizeIs(1));
    EXPECT_THAT(details.linked.at("g"), ElementsAre(ElementsAre(c, a)));
}

using ScannerMeasurement = ScannerFixture;

TEST_F(ScannerMeasurement, SaysWhatOfTheDiskTheWalkHasSeen) {
    machine.volumes.total = 100'000'000'000;
    machine.volumes.available = 40'000'000'000;
    machine.volumes.reserved = 5'000'000'000;
    machine.volumes.volumes = {{.path = machine.home.path("stick"), .used = 7}};
    file("Music/a.mp3", 2'000'000);
    file("Music/.hidden", 500);
    const auto output = scan();
    EXPECT_EQ(output.measurement.total, 100'000'000'000);
    EXPECT_EQ(output.measurement.reserved, 5'000'000'000);
    EXPECT_EQ(output.measurement.home, 2'000'000);
    EXPECT_EQ(output.measurement.hidden, 500);
    EXPECT_EQ(output.measurement.outside(), 54'997'999'500);
    EXPECT_EQ(output.measurement.volumes, machine.volumes.volumes);
    EXPECT_TRUE(output.measurement.compared.complete);
}

TEST_F(ScannerMeasurement, AFileWithTwoNamesTakesUpItsSpaceOnce) {
    for (const char* name : {"Music/a.mp3", "Music/b.mp3"}) {
        auto& node = file(name, 2'000'000);
        node.inode = 7'000'000;
        node.links = 2;
    }
    const auto output = scan();
    EXPECT_EQ(output.measurement.home, 2'000'000);
}

TEST_F(ScannerMeasurement, NamesAFolderThatCannotBeRead) {
    folder("Music/locked").openError = EACCES;
    const auto output = scan();
    EXPECT_EQ(output.measurement.unreadable.count, 1);
    EXPECT_THAT(output.measurement.unreadable.paths, ElementsAre(at("Music/locked")));
}

}  // namespace
}  // namespace velto
