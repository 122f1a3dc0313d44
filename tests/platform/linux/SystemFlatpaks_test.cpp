#include "platform/linux/packages/SystemFlatpaks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "support/TempHome.h"
#include "support/fakes.h"
#include "support/system_platform.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// As flatpak 1.14 exports an application's entry.
constexpr const char* entryText =
    "[Desktop Entry]\nType=Application\nName=Maps\n"
    "Exec=/usr/bin/env true --branch=stable --command=maps org.example.Maps\n"
    "X-Flatpak=org.example.Maps\n";

class SystemFlatpaksTest : public testing::Test {
protected:
    SystemFlatpaksTest() {
        home_.text("flatpak/exports/share/applications/org.example.Maps.desktop", entryText);
        home_.folder("flatpak/app/org.example.Maps");
    }

    std::string entry() const {
        return home_.path("flatpak/exports/share/applications/org.example.Maps.desktop");
    }
    std::pair<PackageError::Reason, std::string> failure() {
        try {
            flatpaks_.remove(maps, false);
        } catch (const PackageError& error) {
            return {error.reason(), error.what()};
        }
        ADD_FAILURE() << "removed";
        return {};
    }

    const Package maps{"org.example.Maps", "org.example.Maps"};
    TempHome home_;
    std::unique_ptr<FileManager> files_ = systemFileManager();
    FakeToolRunner tools_;
    SystemFlatpaks flatpaks_{*files_, tools_, home_.path("flatpak")};
};

TEST_F(SystemFlatpaksTest, AnExportedEntryBelongsToTheApplicationThatItNames) {
    EXPECT_EQ(flatpaks_.owner(entry()), maps);
    EXPECT_EQ(flatpaks_.owner("/usr/share/applications/org.example.Maps.desktop"), std::nullopt);
    EXPECT_EQ(flatpaks_.owner(entry() + "x"), std::nullopt);
    files_->removeAll(home_.path("flatpak/app/org.example.Maps"));
    EXPECT_EQ(flatpaks_.owner(entry()), std::nullopt) << "its entry was left behind";
}

TEST_F(SystemFlatpaksTest, FlatpakRemovesItForAllUsers) {
    flatpaks_.remove(maps, false);
    EXPECT_THAT(tools_.commands, ElementsAre(ElementsAre("/usr/bin/flatpak", "uninstall",
                                                         "--system", "--noninteractive",
                                                         "--assumeyes", "--", "org.example.Maps")));
}

TEST_F(SystemFlatpaksTest, WhatIsNotInstalledIsNotAskedFor) {
    for (const char* name : {"org.example.Other", "", "../app/org.example.Maps", "--all", "."}) {
        EXPECT_THROW(flatpaks_.remove({name, name}, false), PackageError) << name;
    }
    EXPECT_THAT(tools_.commands, IsEmpty());
}

TEST_F(SystemFlatpaksTest, EveryFailureHasItsReason) {
    tools_.result = {.started = false,
                     .startError = "No such file or directory",
                     .exitStatus = -1,
                     .standardError = ""};
    EXPECT_EQ(failure().first, PackageError::Reason::unavailable);
    tools_.result = {
        .started = true,
        .startError = "",
        .exitStatus = 1,
        .standardError = "error: Flatpak system operation Uninstall not allowed for user"};
    EXPECT_EQ(failure().first, PackageError::Reason::refused);
    tools_.result.standardError = "error: disk I/O error";
    EXPECT_EQ(failure(),
              std::pair(PackageError::Reason::failed, std::string("error: disk I/O error")));
}

}  // namespace
}  // namespace velto
