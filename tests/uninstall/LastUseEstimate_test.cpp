#include "uninstall/LastUseEstimate.h"

#include <gtest/gtest.h>

#include "UninstallWorld.h"
#include "support/WatchedFiles.h"

namespace velto {
namespace {

constexpr const char* identifier = "com.example.Foo";

class LastUseEstimateTest : public testing::Test, protected UninstallWorld {
protected:
    /// Asked both ways: file by file, and with the folders listed first.
    std::optional<double> estimate(const std::string& bundleID = identifier) {
        const LastUseEstimate asking(machine.platform);
        LastUseEstimate listing(machine.platform);
        listing.listFolders();
        EXPECT_EQ(asking.of(bundleID), listing.of(bundleID)) << bundleID;
        return listing.of(bundleID);
    }
};

TEST_F(LastUseEstimateTest, ItIsTheLatestChangeOfTheApplicationsOwnFiles) {
    EXPECT_EQ(estimate(), std::nullopt);
    const char* const places[] = {
        "Library/Preferences/com.example.Foo.plist", "Library/Application Support/com.example.Foo",
        "Library/Containers/com.example.Foo", "Library/HTTPStorages/com.example.Foo",
        "Library/Saved Application State/com.example.Foo.savedState"};
    std::int64_t time = 1'000'000'000;
    for (const char* place : places) {
        home.text(place, "x").dated(1, ++time);
        EXPECT_EQ(estimate(), static_cast<double>(time)) << place;
    }
    home.text("Library/Caches/com.example.Foo", "x").dated(1, ++time);
    EXPECT_EQ(estimate(), static_cast<double>(time - 1)) << "caches change without any use";
}

TEST_F(LastUseEstimateTest, AFolderThatTheSystemGuardsIsNeverListed) {
    auto files = std::make_unique<WatchedFiles>(std::move(machine.platform.files));
    const WatchedFiles& watched = *files;
    machine.platform.files = std::move(files);
    home.text("Library/Containers/com.example.Foo", "x").dated(1, 1'000'000'000);
    EXPECT_EQ(estimate(), 1'000'000'000);
    const auto looked = watched.looked();
    EXPECT_TRUE(looked.contains(home.path("Library/Preferences/")));
    for (const char* guarded : {"Library/Containers/", "Library/HTTPStorages/"})
        EXPECT_FALSE(looked.contains(home.path(guarded))) << guarded;
}

TEST_F(LastUseEstimateTest, WhatIsNoIdentifierNamesNoFile) {
    library("Preferences/.plist");
    EXPECT_EQ(estimate(""), std::nullopt);
    EXPECT_EQ(estimate("../Caches"), std::nullopt);
    EXPECT_EQ(estimate("com.example"), std::nullopt);
}

TEST_F(LastUseEstimateTest, AnIdentifierInOtherLettersThanAsciiIsFound) {
    home.text("Library/Preferences/com.example.caf\xC3\xA9.plist", "x").dated(1, 1'000'000'000);
    EXPECT_EQ(estimate("com.example.caf\xC3\xA9"), 1'000'000'000.0);
}

TEST_F(LastUseEstimateTest, AFolderThatCannotBeListedIsStillAsked) {
    home.text("Library/Containers/com.example.Foo", "x").dated(1, 1'000'000'000);
    calls.refuses = [](const char* call, const char*) {
        return std::string(call) == "open" ? EACCES : 0;
    };
    LastUseEstimate listing(machine.platform);
    listing.listFolders();
    EXPECT_EQ(listing.of(identifier), 1'000'000'000.0);
}

TEST_F(LastUseEstimateTest, ManyApplicationsDoNotCostManyLooksAtTheLibrary) {
    LastUseEstimate listing(machine.platform);
    listing.listFolders();
    // What is not in a listed folder is not asked for, as this file shows, made too late.
    library("Preferences/com.example.Foo.plist");
    EXPECT_EQ(listing.of(identifier), std::nullopt);
}

}  // namespace
}  // namespace velto
