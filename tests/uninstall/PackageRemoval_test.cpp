#include "uninstall/PackageRemoval.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestPlatform.h"
#include "support/fakes.h"
#include "uninstall/essential_packages.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PackageRemovalTest : public testing::Test {
protected:
    PackageRemovalTest() {
        machine_.platform.layout = HomeLayout::freedesktop(
            machine_.home.path(), [](const std::string&) { return std::nullopt; }, "");
        auto service = std::make_unique<FakePackageService>();
        service_ = service.get();
        machine_.platform.packages.push_back(std::move(service));
    }

    std::optional<PackageError::Reason> failure(const std::vector<std::string>& shown = {}) {
        try {
            removal_.remove(service_->entry, shown);
            return std::nullopt;
        } catch (const PackageError& error) {
            return error.reason();
        }
    }

    TestPlatform machine_;
    FakePackageService* service_;
    PackageRemoval removal_{machine_.platform};
};

TEST_F(PackageRemovalTest, ThePlanNamesThePackageAndWhatGoesWithIt) {
    service_->others = {{"gnome", "gnome;1;all;installed"}};
    EXPECT_EQ(removal_.plan(service_->entry), (PackagePlan{.keeper = PackageKeeper::distribution,
                                                           .name = "example-maps",
                                                           .others = {"gnome"},
                                                           .kept = "",
                                                           .command = ""}));
    EXPECT_THAT(service_->removed, IsEmpty());
}

TEST_F(PackageRemovalTest, WhatIsTheUsersOwnIsNoPackage) {
    service_->entry = machine_.home.path(".local/share/applications/org.example.Maps.desktop");
    EXPECT_EQ(removal_.plan(service_->entry), std::nullopt);
    EXPECT_EQ(failure(), PackageError::Reason::missing);
    EXPECT_THAT(service_->removed, IsEmpty());
}

TEST_F(PackageRemovalTest, OnlyAnEntryByItsOwnPathIsAskedFor) {
    for (const char* path :
         {"/usr/bin/maps", "", "relative.desktop", "/usr/share/applications/../x.desktop"}) {
        service_->entry = path;
        EXPECT_EQ(removal_.plan(path), std::nullopt) << path;
    }
}

TEST_F(PackageRemovalTest, OnAMacNothingIsAPackage) {
    machine_.platform.layout = HomeLayout::macOS(machine_.home.path());
    EXPECT_EQ(removal_.plan(service_->entry), std::nullopt);
}

TEST_F(PackageRemovalTest, WhatTakesTheDesktopAlongStays) {
    service_->others = {{"gnome", "gnome;1"}, {"gnome-shell", "gnome-shell;43"}};
    EXPECT_EQ(removal_.plan(service_->entry)->kept, "gnome-shell");
    EXPECT_EQ(failure({"gnome", "gnome-shell"}), PackageError::Reason::kept);
    EXPECT_THAT(service_->removed, IsEmpty());
}

TEST_F(PackageRemovalTest, ThisProgramAndWhatItStandsOnStay) {
    service_->package = {"velto", "velto;1;amd64;installed"};
    EXPECT_EQ(removal_.plan(service_->entry)->kept, "velto");
    EXPECT_EQ(failure(), PackageError::Reason::kept);
    service_->package = {"libwebkitgtk", "libwebkitgtk;1"};
    service_->others = {{"velto", "velto;1;amd64;installed"}};
    EXPECT_EQ(failure({"velto"}), PackageError::Reason::kept);
    EXPECT_THAT(service_->removed, IsEmpty());
}

TEST_F(PackageRemovalTest, MoreThanWasShownDoesNotGo) {
    service_->others = {{"gnome", "gnome;1"}, {"gnome-games", "gnome-games;1"}};
    EXPECT_EQ(failure({"gnome"}), PackageError::Reason::changed);
    EXPECT_THAT(service_->removed, IsEmpty());
}

TEST_F(PackageRemovalTest, WhatWasShownGoesWithTheKeepersLeave) {
    service_->others = {{"gnome", "gnome;1"}};
    EXPECT_EQ(failure({"gnome", "other"}), std::nullopt);
    service_->others.clear();
    EXPECT_EQ(failure(), std::nullopt);
    EXPECT_THAT(service_->removed, ElementsAre("example-maps;1.0;amd64;installed and others",
                                               "example-maps;1.0;amd64;installed"));
    service_->refusal = PackageError::Reason::refused;
    EXPECT_EQ(failure(), PackageError::Reason::refused);
}

TEST_F(PackageRemovalTest, WhereNobodyAnswersTheCommandIsTold) {
    service_->failure = PackageError::Reason::unavailable;
    service_->entry = "/usr/share/applications/it's.desktop";
    const auto plan = removal_.plan(service_->entry);
    ASSERT_TRUE(plan);  // of the machines that run this, each has one of the tools
    EXPECT_EQ(plan->name, "");
    EXPECT_THAT(plan->command, testing::StartsWith("sudo "));
    EXPECT_THAT(plan->command, testing::HasSubstr("'/usr/share/applications/it'\\''s.desktop'"));
}

TEST_F(PackageRemovalTest, AnotherFailureOfLookingIsTold) {
    service_->failure = PackageError::Reason::busy;
    EXPECT_THROW(removal_.plan(service_->entry), PackageError);
}

TEST(EssentialPackages, HoldUpTheComputerTheDesktopOrThisProgram) {
    for (const char* name : {"velto", "gnome-shell", "plasma-workspace", "kwin-wayland", "gdm3",
                             "systemd", "linux-image-6.1.0-28-amd64", "grub-efi-amd64", "libc6",
                             "snapd", "NetworkManager", "kernel-core", "shim-signed"}) {
        EXPECT_TRUE(isEssentialPackage(name)) << name;
    }
}

TEST(EssentialPackages, AreNoApplications) {
    for (const char* name :
         {"", "firefox-esr", "gnome-maps", "gnome", "gnome-core", "grub-customizer", "pacman",
          "linuxlogo", "velto-themes", "kwave", "libreoffice-writer", "systemd-timesyncd",
          "kernelshark", "shimmer-themes"}) {
        EXPECT_FALSE(isEssentialPackage(name)) << name;
    }
}

}  // namespace
}  // namespace velto
