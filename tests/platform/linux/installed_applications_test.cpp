#include "platform/linux/installed_applications.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"

namespace velto {
namespace {

struct InstalledApplicationsTest : testing::Test {
    TempHome home;
    PosixFileManager files;
    int reads = 0;
    InstalledApplications installed{
        files,
        {{"user", home.path("user")}, {"system", home.path("system")}, {"x", home.path("missing")}},
        [this](const std::string& path) -> std::optional<DesktopEntry> {
            ++reads;
            if (path.find("deleted") != std::string::npos) return std::nullopt;
            return DesktopEntry{.name = path.find("nameless") == std::string::npos ? path : "",
                                .executable = "/opt/" + std::to_string(reads) + "/program",
                                .isShown = path.find("internal") == std::string::npos};
        }};

    const RunningApp* find(const std::string& identifier) {
        return installed.index()->find("0::/app-" + identifier + "-1.scope\n", "");
    }

    /// Folders change within one tick of the clock here, so their times are set.
    void changed(const std::string& folder, std::time_t seconds) {
        const timespec times[] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, home.path(folder).c_str(), times, 0), 0);
    }
};

TEST_F(InstalledApplicationsTest, EntriesOfTheUserHideThoseOfTheSystem) {
    home.text("user/editor.desktop", "");
    home.text("system/editor.desktop", "");
    home.text("system/player.desktop", "");
    home.text("system/mimeinfo.cache", "");
    const RunningApp* const editor = find("editor");
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->path, home.path("user/editor.desktop"));
    EXPECT_EQ(editor->name, editor->path);
    EXPECT_EQ(editor->bundle, "editor");
    EXPECT_NE(find("player"), nullptr);
    EXPECT_EQ(reads, 2);
}

TEST_F(InstalledApplicationsTest, WhatIsDeletedOrNotShownToTheUserIsNoApplication) {
    for (const char* name : {"deleted", "internal"}) {
        home.text("user/" + std::string(name) + ".desktop", "");
        home.text("system/" + std::string(name) + ".desktop", "");
        EXPECT_EQ(find(name), nullptr) << name;
    }
}

TEST_F(InstalledApplicationsTest, AnEntryWithoutANameIsCalledByItsFile) {
    home.text("user/nameless.desktop", "");
    ASSERT_NE(find("nameless"), nullptr);
    EXPECT_EQ(find("nameless")->name, "nameless");
}

TEST_F(InstalledApplicationsTest, NothingIsReadAgainUntilAnEntryComesOrGoes) {
    home.text("user/editor.desktop", "");
    changed("user", 1000);
    const auto first = installed.index();
    EXPECT_EQ(installed.index(), first);
    EXPECT_EQ(reads, 1);
    home.text("user/player.desktop", "");
    changed("user", 2000);
    const auto second = installed.index();
    EXPECT_NE(second, first);
    EXPECT_NE(find("player"), nullptr);
    EXPECT_EQ(reads, 3);
    home.text("missing/late.desktop", "");
    EXPECT_NE(installed.index(), second);
}

TEST_F(InstalledApplicationsTest, AnEntryInASubfolderCountsAlsoWhenItComesLater) {
    home.folder("user/office");
    changed("user/office", 1000);
    EXPECT_EQ(find("office_writer"), nullptr);
    home.text("user/office/writer.desktop", "");
    changed("user/office", 2000);
    // The hyphen of the identifier is escaped in the name of the unit.
    EXPECT_NE(find("office\\x2dwriter"), nullptr);
}

TEST_F(InstalledApplicationsTest, AnEntryIsReadFromAFileAndNeverFromAPipeOrADevice) {
    const std::string entry = "[Desktop Entry]\nType=Application\nName=Editor\nExec=/bin/cat %f\n";
    home.text("entry.desktop", entry);
    home.link("link.desktop", "entry.desktop");
    for (const char* name : {"entry.desktop", "link.desktop"}) {
        const auto read = readDesktopEntry(home.path(name));
        ASSERT_TRUE(read) << name;
        EXPECT_EQ(read->name, "Editor");
        EXPECT_TRUE(read->isShown);
    }
    ASSERT_EQ(mkfifo(home.path("pipe.desktop").c_str(), 0600), 0);
    home.link("device.desktop", "/dev/zero");
    home.sparse("huge.desktop", 1'000'000'000'000);
    home.text("noise.desktop", std::string(1'000, '\xF7'));
    for (const char* name : {"pipe.desktop", "device.desktop", "huge.desktop", "noise.desktop"})
        EXPECT_FALSE(readDesktopEntry(home.path(name))) << name;
}

}  // namespace
}  // namespace velto
