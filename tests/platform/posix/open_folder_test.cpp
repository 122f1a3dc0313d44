// The way to a folder: no link leads astray on it, and no length is too much.

#include <fcntl.h>

#include "platform/posix/MoveWorld.h"
#include "platform/posix/PosixFolder.h"
#include "support/ordinary_user.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

class OpenFolder : public MoveWithinVolume {
protected:
    int openReason(const std::string& path, FolderPath how = FolderPath::withoutLinks) {
        return reasonOf([&] { files.openFolder(path, how); });
    }
};

TEST_F(OpenFolder, ALinkInPlaceOfAnyComponentIsRefused) {
    const std::vector<std::string> components{"a", "b", "c", "d"};
    source.folder("a/b/c/d");
    ASSERT_EQ(openReason(source.path("a/b/c/d")), 0);
    std::string path;
    for (const std::string& component : components) {
        path += (path.empty() ? "" : "/") + component;
        fs::rename(source.path(path), source.path("real"));
        source.link(path, source.path("real"));
        EXPECT_EQ(openReason(source.path("a/b/c/d")), ELOOP) << path;
        EXPECT_EQ(openReason(source.path("a/b/c/d"), FolderPath::throughLinks), 0) << path;
        EXPECT_EQ(openReason(source.path("a/b/c/d"), FolderPath::createdWithoutLinks), ELOOP)
            << path;
        fs::remove(source.path(path));
        fs::rename(source.path("real"), source.path(path));
    }
}

TEST_F(OpenFolder, ALinkToTheNextFolderOnTheWayIsRefusedToo) {
    source.folder("a/b");
    source.link("a/same", "b");
    source.link("a/here", ".");
    EXPECT_EQ(openReason(source.path("a/same")), ELOOP);
    EXPECT_EQ(openReason(source.path("a/here/b")), ELOOP);
    EXPECT_EQ(reasonOf([&] {
                  files.openFolder(*files.openFolder(source.path("a"), FolderPath::withoutLinks),
                                   "same");
              }),
              ELOOP);
}

TEST_F(OpenFolder, AFolderSwappedForALinkOnTheWayIsNotFollowed) {
    source.folder("a/b/c");
    target.text("b/c/secret", "kept");
    // Just before "b" is looked for in the folder "a" that is open already.
    calls.refuses = [&](const char* call, const char* name) {
        if (call == std::string("open") && name == std::string("b") &&
            !fs::is_symlink(source.path("a/b"))) {
            fs::rename(source.path("a/b"), source.path("a/real"));
            source.link("a/b", target.path("b"));
        }
        return 0;
    };
    EXPECT_EQ(openReason(source.path("a/b/c")), ELOOP);
}

TEST_F(OpenFolder, WhatIsNoFolderIsTold) {
    source.text("file", "");
    source.link("dangling", "nowhere");
    EXPECT_EQ(openReason(source.path("file")), ENOTDIR);
    EXPECT_EQ(openReason(source.path("file/below")), ENOTDIR);
    EXPECT_EQ(openReason(source.path("missing")), ENOENT);
    EXPECT_EQ(openReason(source.path("dangling")), ELOOP);
    EXPECT_EQ(openReason("relative"), EINVAL);
    EXPECT_EQ(openReason(source.path() + std::string("\0/file", 6)), EINVAL);
}

TEST_F(OpenFolder, WhatIsMissingIsMadeButNeverBehindALink) {
    target.folder("elsewhere");
    source.link("a", target.path("elsewhere"));
    source.link("dangling", target.path("not there"));
    for (const char* path : {"a/b/c", "a", "dangling", "dangling/b"}) {
        EXPECT_EQ(openReason(source.path(path), FolderPath::createdWithoutLinks), ELOOP) << path;
    }
    EXPECT_TRUE(fs::is_empty(target.path("elsewhere")));
    EXPECT_FALSE(target.exists("not there"));
    EXPECT_EQ(openReason(source.path("b/c"), FolderPath::createdWithoutLinks), 0);
    EXPECT_TRUE(source.exists("b/c"));
}

TEST_F(OpenFolder, TheFolderThatStandsInTheWayIsNamed) {
    source.folder("a/b");
    source.link("a/link", "b");
    source.text("a/file", "");
    for (const char* obstacle : {"a/link", "a/file"}) {
        for (const auto how : {FolderPath::withoutLinks, FolderPath::createdWithoutLinks}) {
            try {
                files.openFolder(source.path(std::string(obstacle) + "/c/d"), how);
                ADD_FAILURE() << obstacle;
            } catch (const FileError& error) {
                EXPECT_EQ(error.path(), source.path(obstacle));
            }
        }
    }
}

TEST_F(OpenFolder, AFolderOfSomebodyElseIsToldApart) {
    if (geteuid() != 0) GTEST_SKIP() << "only an administrator can give folders away";
    source.folder("mine");
    source.folder("theirs");
    ASSERT_EQ(asOrdinaryUser({source.path()}, [] { return 0; }), 0);
    ASSERT_EQ(chown(source.path("theirs").c_str(), 1, 1), 0);
    EXPECT_EQ(asOrdinaryUser({},
                             [&] {
                                 const auto mine = files.openFolder(*from, "mine");
                                 const auto theirs = files.openFolder(*from, "theirs");
                                 return (files.isOwnFolder(*mine, *from) ? 1 : 0) +
                                        (files.isOwnFolder(*theirs, *from) ? 2 : 0) +
                                        (files.isOwnFolder(*theirs, *theirs) ? 4 : 0);
                             }),
              1 + 4);
}

TEST_F(OpenFolder, APathOf100000BytesIsMadeAndFoundAgain) {
    std::string path = source.path("deep");
    while (path.size() < 100'000)
        path += "/" + std::string(200, 'x');
    EXPECT_EQ(openReason(path), ENOENT);
    const auto made = files.openFolder(path, FolderPath::createdWithoutLinks);
    files.makeFolder(*made, "inside");
    const auto found = files.openFolder(path, FolderPath::withoutLinks);
    EXPECT_TRUE(files.attributes(*found, "inside"));
    EXPECT_TRUE(files.isAtOrBelow(*found, *from));
    files.removeAll(*from, "deep");
    EXPECT_FALSE(source.exists("deep"));
}

TEST_F(OpenFolder, ALinkAtTheEndOf100000BytesIsRefused) {
    std::string path = source.path("deep");
    while (path.size() < 100'000)
        path += "/" + std::string(200, 'x');
    const auto made = files.openFolder(path, FolderPath::createdWithoutLinks);
    ASSERT_EQ(FileCalls().makeLink("/", number(*made), "link"), 0);
    EXPECT_EQ(openReason(path + "/link"), ELOOP);
    files.removeAll(*from, "deep");
}

TEST_F(OpenFolder, ANameThatIsTooLongForTheVolumeIsReported) {
    EXPECT_EQ(openReason(source.path(std::string(300, 'x'))), ENAMETOOLONG);
    EXPECT_EQ(openReason(source.path(std::string(300, 'x')), FolderPath::createdWithoutLinks),
              ENAMETOOLONG);
    EXPECT_FALSE(files.attributes(*from, std::string(300, 'x'))) << "nothing can stand there";
}

}  // namespace
}  // namespace velto
