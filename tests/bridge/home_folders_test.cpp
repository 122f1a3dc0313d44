#include "bridge/home_folders.h"

#include "bridge/TrashFixture.h"

namespace velto {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;

HomeLayout linuxHome(std::string_view userDirs) {
    return HomeLayout::freedesktop(
        "/home/ana", [](const std::string&) { return std::nullopt; }, userDirs);
}

TEST(HomeFolders, ThoseOfTheUserAreKeptWhateverTheyAreCalledHere) {
    const HomeFolders folders =
        homeFolders(linuxHome("XDG_PICTURES_DIR=\"$HOME/Media/Fotos\"\n"
                              "XDG_DOCUMENTS_DIR=\"$HOME/Документы\"\n"
                              "XDG_DOWNLOAD_DIR=\"$HOME/Pobrane\"\n"));
    EXPECT_THAT(folders.kept, IsSupersetOf({"/home/ana", "/home/ana/Media/Fotos",
                                            "/home/ana/Документы", "/home/ana/Pobrane"}));
    EXPECT_THAT(folders.kept, Contains("/home/ana/Media")) << "it would take the pictures along";
    EXPECT_THAT(folders.kept, Not(Contains("/home/ana/video")));
    EXPECT_THAT(folders.kept, Not(Contains("/home/ana/Sites")));
    EXPECT_THAT(folders.kept, Not(Contains("/home")));
}

TEST(HomeFolders, WhatProgramsKeepForThemselvesStaysAsAWholeOnLinux) {
    const HomeFolders folders = homeFolders(linuxHome(""));
    EXPECT_THAT(folders.kept,
                IsSupersetOf({"/home/ana/.local", "/home/ana/.local/share", "/home/ana/.config",
                              "/home/ana/.local/share/Trash", "/home/ana/.local/share/Velto",
                              "/home/ana/.cache", "/home/ana/.var", "/home/ana/.var/app",
                              "/home/ana/.ssh", "/home/ana/.pki", "/home/ana/snap"}));
    EXPECT_THAT(folders.kept, Not(Contains("/home/ana/.cache/mozilla"))) << "a cache may go";
    EXPECT_THAT(folders.kept, Not(Contains("/home/ana/.var/app/org.mozilla.firefox")));
}

TEST(HomeFolders, WhatTheSystemLooksForStaysAsAWholeOnAMac) {
    const HomeFolders folders = homeFolders(HomeLayout::macOS("/Users/ana"));
    EXPECT_THAT(
        folders.kept,
        IsSupersetOf({"/Users/ana/.Trash", "/Users/ana/Library", "/Users/ana/Movies",
                      "/Users/ana/Library/Application Support", "/Users/ana/Library/Containers",
                      "/Users/ana/Library/Accounts", "/Users/ana/Library/Mobile Documents"}));
    EXPECT_THAT(folders.kept, Not(Contains("/Library"))) << "no walk meets it";
    EXPECT_THAT(folders.kept, Not(Contains("/Users/ana/Library/Caches/com.apple.Safari")));
}

TEST(HomeFolders, ACategoryHasItsFoldersAndTheRestOfALinuxHomeHasNone) {
    auto mac = homeFolders(HomeLayout::macOS("/Users/ana")).categories;
    EXPECT_THAT(mac["fotos"], ElementsAre("/Users/ana/Pictures", "/Users/ana/Movies"));
    EXPECT_THAT(mac["apps"], ElementsAre("/Users/ana/Library", "/Users/ana/Applications"));
    EXPECT_THAT(mac["sistema"], ElementsAre("/Users/ana/Library"));

    auto linux = homeFolders(linuxHome("XDG_DOWNLOAD_DIR=\"$HOME/Pobrane\"\n"));
    EXPECT_THAT(linux.categories["descargas"], ElementsAre("/home/ana/Pobrane"));
    EXPECT_THAT(linux.categories["apps"], Contains("/home/ana/.var/app"));
    EXPECT_FALSE(linux.categories.contains("sistema"));
}

struct HomeFoldersEvent : BridgeFixture {};

TEST_F(HomeFoldersEvent, ThePageLearnsThemWithTheHome) {
    open();
    load();
    const auto& layout = machine.platform.layout;
    const nlohmann::json told = lastArgument(*page, "onHomeFolders");
    EXPECT_EQ(told, (nlohmann::json{{"kept", homeFolders(layout).kept},
                                    {"categories", homeFolders(layout).categories}}));
}

}  // namespace
}  // namespace velto
