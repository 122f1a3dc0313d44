#include "platform/icon_theme.h"

#include <gtest/gtest.h>

#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"

namespace velto {
namespace {

/// Themes as distributions have them: a user's folder and the system's.
struct IconThemeTest : testing::Test {
    TempHome disk;
    PosixFileManager files;
    std::vector<std::string> folders{disk.path("user"), disk.path("system")};

    // As freedesktop.org describes the files of icon themes.
    void theme(const std::string& name, const std::string& inherits = "") {
        disk.text("system/" + name + "/index.theme",
                  "[Icon Theme]\nName=" + name + "\nInherits=" + inherits +
                      "\nDirectories=apps/16,apps/48,scalable/apps, ../../outside,/etc\n\n"
                      "[apps/16]\nSize=16\nContext=Applications\nType=Fixed\n\n"
                      "[apps/48]\nSize=48\nType=Threshold\n\n"
                      "[scalable/apps]\nSize=64\nMinSize=32\nMaxSize=512\nType=Scalable\n\n"
                      "[../../outside]\nSize=32\n[/etc]\nSize=32\n");
    }
    std::string find(const std::string& icon, int pixels = 32, const std::string& name = "Mine") {
        return themedIconFile(files, folders, name, icon, pixels);
    }
};

TEST_F(IconThemeTest, TheThemeOfTheDesktopComesBeforeThoseItInheritsFromAndHicolorIsLast) {
    theme("Mine", "Parent, Missing");
    theme("Parent", "Mine");
    theme("hicolor");
    const std::string last = disk.text("system/hicolor/apps/48/files.png", "").path();
    EXPECT_EQ(find("files"), last);
    const std::string parent = disk.text("system/Parent/apps/48/files.png", "").path();
    EXPECT_EQ(find("files"), parent);
    const std::string own = disk.text("system/Mine/apps/16/files.png", "").path();
    EXPECT_EQ(find("files"), own);
    const std::string users = disk.text("user/Mine/apps/16/files.svg", "").path();
    EXPECT_EQ(find("files"), users);
    EXPECT_EQ(find("other"), "");
    EXPECT_EQ(find("files", 32, "NoSuchTheme"), last);
}

TEST_F(IconThemeTest, TheNearestSizeThatIsLargeEnoughIsTaken) {
    theme("Mine");
    const std::string small = disk.text("system/Mine/apps/16/files.png", "").path();
    EXPECT_EQ(find("files"), small);
    const std::string large = disk.text("system/Mine/apps/48/files.png", "").path();
    EXPECT_EQ(find("files"), large);
    EXPECT_EQ(find("files", 16), small);
    const std::string drawing = disk.text("system/Mine/scalable/apps/files.svg", "").path();
    EXPECT_EQ(find("files"), drawing);
    EXPECT_EQ(find("files", 48), large) << "as near, and named first";
}

TEST_F(IconThemeTest, NothingLeadsOutOfATheme) {
    theme("Mine");
    disk.text("outside/files.png", "");
    disk.text("system/secret.png", "");
    EXPECT_EQ(find("files"), "");
    EXPECT_EQ(find("../../secret"), "");
    EXPECT_EQ(find("files", 32, ".."), "");
    EXPECT_EQ(find("files", 32, "a/b"), "");
    EXPECT_EQ(find(""), "");
}

TEST_F(IconThemeTest, AnIndexThatIsNoneHasNoIcons) {
    for (const char* text : {"", "[Icon Theme]", "[Icon Theme]\nDirectories=a,,a,\n[a]\nSize=x",
                             "Directories=a", "[", "]\n=\n[]\n,"}) {
        disk.text("system/Mine/index.theme", text);
        EXPECT_EQ(find("files"), "") << text;
    }
}

}  // namespace
}  // namespace velto
