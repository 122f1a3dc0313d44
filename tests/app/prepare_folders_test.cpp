#include "app/prepare_folders.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "settings/VeltoSettings.h"
#include "support/TestPlatform.h"

namespace velto {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

struct PrepareFolders : testing::Test {
    TestPlatform machine;
    const std::string data = machine.platform.layout.dataFolder;

    PrepareFolders() { machine.platform.settingsFolder = machine.home.path(".config/velto"); }

    static unsigned mode(const std::string& item) {
        struct stat status {};
        EXPECT_EQ(lstat(item.c_str(), &status), 0) << item;
        return status.st_mode & 07777;
    }
    void made(const char* path, mode_t bits) {
        machine.home.folder(path);
        ASSERT_EQ(chmod(machine.home.path(path).c_str(), bits), 0);
    }
    std::string textIn(const char* code, const UnsafeFolder& unsafe) {
        VeltoSettings settings(machine.defaults, machine.locale);
        AppLanguage language(settings);
        language.setCode(code);
        return textOf(unsafe, machine.platform, language);
    }
};

TEST_F(PrepareFolders, TheDataFolderIsThereForTheUserAloneAndSettingsAreNotMadeUp) {
    EXPECT_FALSE(prepareOwnFolders(machine.platform));
    EXPECT_EQ(mode(data), 0700u);
    EXPECT_FALSE(machine.home.exists(".config"));
    EXPECT_THAT(machine.log.lines(), IsEmpty());
}

TEST_F(PrepareFolders, FoldersAndFilesThatOthersCouldWriteAreClosedAndTheLogTellsSo) {
    made("Library/Application Support/Velto", 0777);
    made(".config/velto", 0775);
    machine.home.text(".config/velto/settings.json", "{}");
    machine.home.text("Library/Application Support/Velto/history.json", "[]");
    machine.home.text("Library/Application Support/Velto/Trash/manifest.json", "{}");
    for (const std::string& path : {machine.home.path(".config/velto/settings.json"),
                                    data + "/history.json", data + "/Trash/manifest.json"})
        ASSERT_EQ(chmod(path.c_str(), 0664), 0);
    EXPECT_FALSE(prepareOwnFolders(machine.platform));
    EXPECT_EQ(mode(data), 0700u);
    EXPECT_EQ(mode(machine.home.path(".config/velto")), 0700u);
    EXPECT_EQ(mode(machine.home.path(".config/velto/settings.json")), 0600u);
    EXPECT_EQ(mode(data + "/history.json"), 0600u);
    EXPECT_EQ(mode(data + "/Trash/manifest.json"), 0600u);
    EXPECT_TRUE(machine.log.holds("Velto ▶ carpeta cerrada a otros usuarios: " + data));
    EXPECT_TRUE(machine.log.holds("Velto ▶ cerrado a otros usuarios: " + data + "/history.json"));
    machine.log.clear();
    EXPECT_FALSE(prepareOwnFolders(machine.platform));
    EXPECT_THAT(machine.log.lines(), IsEmpty()) << "once is enough";
}

TEST_F(PrepareFolders, ADataFolderThatIsALinkIsRefusedWithWhatToDoAndNothingIsTouched) {
    machine.home.text("Disk/Velto/Trash/manifest.json", "{}");
    machine.home.link("Library/Application Support/Velto", machine.home.path("Disk/Velto"));
    const auto unsafe = prepareOwnFolders(machine.platform);
    ASSERT_TRUE(unsafe);
    EXPECT_EQ(unsafe->reason(), UnsafeFolder::Reason::link);
    EXPECT_EQ(machine.home.read("Disk/Velto/Trash/manifest.json"), "{}");
    for (const char* code : {"es", "en"}) {
        EXPECT_THAT(textIn(code, *unsafe), HasSubstr(data));
        EXPECT_THAT(textIn(code, *unsafe), HasSubstr(machine.home.path("Disk/Velto")));
    }
    EXPECT_THAT(textIn("es", *unsafe), HasSubstr("quita el enlace"));
    EXPECT_THAT(textIn("en", *unsafe), HasSubstr("remove the link"));
}

TEST_F(PrepareFolders, EveryReasonIsToldInBothLanguages) {
    for (const auto reason : {UnsafeFolder::Reason::link, UnsafeFolder::Reason::otherOwner,
                              UnsafeFolder::Reason::openToOthers}) {
        const UnsafeFolder unsafe(reason, data);
        EXPECT_THAT(textIn("es", unsafe), HasSubstr(data));
        EXPECT_THAT(textIn("en", unsafe), HasSubstr(data));
        EXPECT_NE(textIn("es", unsafe), textIn("en", unsafe));
    }
}

TEST_F(PrepareFolders, LinkedSettingsAreTheUsersChoice) {
    made("dotfiles/velto", 0775);
    machine.home.link(".config/velto", machine.home.path("dotfiles/velto"));
    EXPECT_FALSE(prepareOwnFolders(machine.platform));
    EXPECT_EQ(mode(machine.home.path("dotfiles/velto")), 0700u);
}

TEST_F(PrepareFolders, AFolderThatCannotBeMadeIsNoReasonToEnd) {
    machine.home.text("Library/Application Support", "a file where the folder should be");
    machine.home.link(".config/velto", "nowhere");
    EXPECT_FALSE(prepareOwnFolders(machine.platform));
    EXPECT_EQ(machine.log.lines().size(), 2u);
}

TEST_F(PrepareFolders, WhatCutOffSavesHaveLeftGoesAndWhatBlocksTheLocksIsPutAside) {
    const std::string folder = "Library/Application Support/Velto/";
    const std::string left = ".velto-0123456789abcdef";
    const std::vector<std::string> places{folder, folder + "Trash/", folder + "Growth/",
                                          ".config/velto/", "Library/LaunchAgents/"};
    for (const std::string& place : places) {
        machine.home.text(place + left, "half");
        machine.home.text(place + "other", "kept");
    }
    machine.home.text(folder + "Trash.journal/inside", "kept");
    machine.home.text(folder + "Trash/manifest.json/inside", "kept");
    machine.home.link(folder + "Trash.lock", "other");
    EXPECT_FALSE(prepareOwnFolders(machine.platform));
    for (const std::string& place : places) {
        EXPECT_FALSE(machine.home.exists(place + left)) << place;
        EXPECT_TRUE(machine.home.exists(place + "other")) << place;
    }
    EXPECT_FALSE(machine.home.exists(folder + "Trash.journal"));
    EXPECT_FALSE(machine.home.exists(folder + "Trash.lock"));
    EXPECT_FALSE(machine.home.exists(folder + "Trash/manifest.json"));
    bool isKept = false;
    for (const std::string& name : machine.platform.files->list(data)) {
        if (!name.starts_with("Trash.journal.aside-")) continue;
        isKept = machine.home.read(folder + name + "/inside") == "kept";
    }
    EXPECT_TRUE(isKept);
}

}  // namespace
}  // namespace velto
