#include "platform/linux/installed_applications.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TempHome.h"

namespace velto {
namespace {

struct InstalledApplicationsTest : testing::Test {
    TempHome home;
    int reads = 0;
    InstalledApplications installed{
        {home.path("user"), home.path("system"), home.path("missing")},
        [this](const std::string& path) -> std::optional<ListedApplication> {
            ++reads;
            if (path.find("hidden") != std::string::npos) return std::nullopt;
            return ListedApplication{.name = path, .executable = "/opt/" + std::to_string(reads)};
        }};

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
    home.text("system/hidden.desktop", "");
    home.text("system/mimeinfo.cache", "");
    const auto index = installed.index();
    const RunningApp* editor = index->find("0::/app-editor-1.scope\n", "");
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->path, home.path("user/editor.desktop"));
    EXPECT_EQ(editor->bundle, "editor");
    EXPECT_NE(index->find("0::/app-player-1.scope\n", ""), nullptr);
    EXPECT_EQ(index->find("0::/app-hidden-1.scope\n", ""), nullptr);
    EXPECT_EQ(reads, 3);
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
    EXPECT_NE(second->find("0::/app-player-1.scope\n", ""), nullptr);
    home.text("missing/late.desktop", "");
    EXPECT_NE(installed.index(), second);
}

}  // namespace
}  // namespace velto
