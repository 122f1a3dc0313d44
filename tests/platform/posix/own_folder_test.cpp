#include "platform/own_folder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <initializer_list>

#include "platform/posix/FileCalls.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

/// A disk whose files belong to somebody else, or that has no permissions to change.
class OtherOwnersCalls final : public FileCalls {
public:
    using FileCalls::changeMode;
    int stat(int folder, const char* name, struct stat& status) override {
        const int result = FileCalls::stat(folder, name, status);
        if (foreign == name) status.st_uid = ::geteuid() + 1;
        return result;
    }
    int status(int file, struct stat& status) override {
        const int result = FileCalls::status(file, status);
        if (isFolderAboveForeign) status.st_uid = ::geteuid() + 1;
        return result;
    }
    int changeMode(int folder, const char* name, mode_t mode) override {
        if (!hasPermissions) return 0;  // accepted, and without effect
        return FileCalls::changeMode(folder, name, mode);
    }

    std::string foreign;
    bool hasPermissions = true;
    bool isFolderAboveForeign = false;
};

/// The permissions with which everything is made, for the length of a test.
class Umask {
public:
    explicit Umask(mode_t mask) : old_(::umask(mask)) {}
    ~Umask() { ::umask(old_); }
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;

private:
    mode_t old_;
};

struct OwnFolderTest : testing::Test {
    TempHome home;
    OtherOwnersCalls calls;
    const std::string path = home.path("share/Velto");

    static unsigned mode(const std::string& item) {
        struct stat status {};
        EXPECT_EQ(lstat(item.c_str(), &status), 0) << item;
        return status.st_mode & 07777;
    }
    static void setMode(const std::string& item, mode_t bits) {
        ASSERT_EQ(chmod(item.c_str(), bits), 0) << item;
    }
    std::optional<UnsafeFolder::Reason> flaw() {
        try {
            makeOwnFolder(path, calls);
            return std::nullopt;
        } catch (const UnsafeFolder& unsafe) {
            EXPECT_EQ(unsafe.path(), path);
            return unsafe.reason();
        }
    }
};

TEST_F(OwnFolderTest, ANewFolderIsForTheUserAloneWhateverTheUmask) {
    for (const auto mask : std::initializer_list<mode_t>{0000, 0002, 0022, 0077, 0277}) {
        const Umask masked(mask);
        EXPECT_FALSE(makeOwnFolder(path));
        EXPECT_EQ(mode(path), 0700u) << mask;
        EXPECT_EQ(mode(home.path("share")) & 077, 0u) << mask;
        std::filesystem::remove(path);
        setMode(home.path("share"), 0700);
        std::filesystem::remove(home.path("share"));
    }
}

TEST_F(OwnFolderTest, AFolderThatOthersCouldEnterIsClosed) {
    for (const mode_t old : std::initializer_list<mode_t>{0775, 0777, 0755, 0750, 0711, 01777}) {
        home.folder("share/Velto");
        setMode(path, old);
        EXPECT_TRUE(makeOwnFolder(path)) << old;
        EXPECT_EQ(mode(path) & 0777, 0700u) << old;
        EXPECT_FALSE(makeOwnFolder(path)) << "mended once";
    }
}

TEST_F(OwnFolderTest, WhatTheUserHasTakenFromHimselfStaysAway) {
    home.folder("share/Velto");
    setMode(path, 0500);
    EXPECT_FALSE(makeOwnFolder(path));
    EXPECT_EQ(mode(path), 0500u);
    setMode(path, 0700);
}

TEST_F(OwnFolderTest, ALinkInItsPlaceIsRefusedAndWhereItLeadsIsLeftAlone) {
    home.folder("elsewhere");
    setMode(home.path("elsewhere"), 0777);
    home.link("share/Velto", "../elsewhere");
    EXPECT_EQ(flaw(), UnsafeFolder::Reason::link);
    EXPECT_EQ(mode(home.path("elsewhere")), 0777u);
}

TEST_F(OwnFolderTest, ALinkFurtherUpIsFollowed) {
    home.folder("elsewhere");
    home.link("share", "elsewhere");
    EXPECT_EQ(flaw(), std::nullopt);
    EXPECT_EQ(mode(home.path("elsewhere/Velto")), 0700u);
}

TEST_F(OwnFolderTest, AnotherUsersFolderIsRefused) {
    home.folder("share/Velto");
    setMode(path, 0777);
    calls.foreign = "Velto";
    EXPECT_EQ(flaw(), UnsafeFolder::Reason::otherOwner);
    EXPECT_EQ(mode(path), 0777u) << "not ours to change";
}

TEST_F(OwnFolderTest, OnAVolumeThatShowsAllAsSomebodyElsesTheFolderIsOurs) {
    home.folder("share/Velto");
    setMode(path, 0755);
    calls.foreign = "Velto";
    calls.isFolderAboveForeign = true;
    calls.hasPermissions = false;
    EXPECT_EQ(flaw(), std::nullopt);
    setMode(path, 0777);
    EXPECT_EQ(flaw(), UnsafeFolder::Reason::openToOthers);
}

TEST_F(OwnFolderTest, WhereOthersCannotBeKeptFromWritingTheFolderIsRefused) {
    home.folder("share/Velto");
    calls.hasPermissions = false;
    setMode(path, 0775);
    EXPECT_EQ(flaw(), UnsafeFolder::Reason::openToOthers);
    setMode(path, 0755);
    EXPECT_EQ(flaw(), std::nullopt) << "others only see what is there";
}

TEST_F(OwnFolderTest, WhatIsNoFolderOrCannotBeMadeIsAnOrdinaryFailure) {
    home.text("share/Velto", "a file");
    EXPECT_THROW(makeOwnFolder(path), FileError);
    EXPECT_THROW(makeOwnFolder(path + "/deeper"), FileError);
    EXPECT_EQ(home.read("share/Velto"), "a file");
}

TEST_F(OwnFolderTest, FilesThatOthersCouldWriteAreClosedAndNothingElseIsTouched) {
    home.text("share/Velto/open", "x");
    home.text("share/Velto/readable", "x");
    home.text("share/Velto/foreign", "x");
    home.text("target", "x");
    home.folder("share/Velto/Trash/op");
    home.link("share/Velto/link", "../../target");
    for (const char* name : {"share/Velto/open", "share/Velto/foreign", "target"})
        setMode(home.path(name), 0666);
    setMode(home.path("share/Velto/readable"), 0644);
    setMode(home.path("share/Velto/Trash"), 0775);
    setMode(home.path("share/Velto/Trash/op"), 0775);
    calls.foreign = "foreign";
    EXPECT_THAT(closeToOthers(path, calls), UnorderedElementsAre(path + "/open", path + "/Trash"));
    EXPECT_EQ(mode(path + "/open"), 0600u);
    EXPECT_EQ(mode(path + "/Trash"), 0700u);
    EXPECT_EQ(mode(path + "/readable"), 0644u);
    EXPECT_EQ(mode(path + "/foreign"), 0666u);
    EXPECT_EQ(mode(path + "/Trash/op"), 0775u);
    EXPECT_EQ(mode(home.path("target")), 0666u);
    EXPECT_THAT(closeToOthers(home.path("missing")), IsEmpty());
    home.link("link", "share/Velto");
    setMode(path + "/open", 0666);
    EXPECT_THAT(closeToOthers(home.path("link")), IsEmpty());
}

TEST_F(OwnFolderTest, WhatStandsInAFilesPlaceMakesWay) {
    home.text("target", "kept");
    home.text("own", "kept");
    home.text("foreign", "x");
    home.link("link", "target");
    home.folder("folder");
    home.text("folder/inside", "kept");
    ASSERT_EQ(mkfifo(home.path("pipe").c_str(), 0600), 0);
    calls.foreign = home.path("foreign");
    EXPECT_FALSE(makeWay(home.path("own"), calls));
    EXPECT_FALSE(makeWay(home.path("missing"), calls));
    for (const char* name : {"foreign", "link", "folder", "pipe"}) {
        EXPECT_TRUE(makeWay(home.path(name), calls)) << name;
        EXPECT_FALSE(home.exists(name)) << name;
    }
    EXPECT_EQ(home.read("own"), "kept");
    EXPECT_EQ(home.read("target"), "kept");
    const auto left = PosixFileManager().list(home.path());
    EXPECT_THAT(left, UnorderedElementsAre("target", "own", StartsWith("folder.aside-"),
                                           StartsWith("foreign.aside-"), StartsWith("link.aside-"),
                                           StartsWith("pipe.aside-")));
    for (const std::string& name : left) {
        if (!name.starts_with("folder.")) continue;
        EXPECT_EQ(home.read(name + "/inside"), "kept");
    }
}

}  // namespace
}  // namespace velto
