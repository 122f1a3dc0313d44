// Removal through an open folder: by name, whatever the path leads to by then.

#include <fcntl.h>

#include "platform/posix/Descriptor.h"
#include "platform/posix/MoveWorld.h"
#include "support/ordinary_user.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

class HandleRemoval : public MoveWithinVolume {
protected:
    int remove() {
        return reasonOf([&] { files.removeAll(*from, "item"); });
    }
    int removeAsUser() {
        return asOrdinaryUser({source.path(), target.path()}, [&] { return remove(); });
    }
};

TEST_F(HandleRemoval, ReadOnlyFoldersGoWithTheirOwnersConsent) {
    source.text("item/a/b/file", "content");
    source.text("item/c/file", "content");
    setMode(source.path("item/a/b/file"), 0);
    for (const char* folder : {"item/a/b", "item/a", "item/c", "item"})
        setMode(source.path(folder), 0555);
    EXPECT_EQ(removeAsUser(), 0);
    EXPECT_FALSE(source.exists("item"));
}

TEST_F(HandleRemoval, FoldersThatTheirOwnerMayNotEvenReadGo) {
    source.text("item/a/b/file", "content");
    source.folder("item/empty");
    ASSERT_EQ(asOrdinaryUser({source.path()}, [] { return 0; }), 0);
    setMode(source.path("item/a/b"), 0);
    setMode(source.path("item/a"), 0300);
    setMode(source.path("item/empty"), 0);
    EXPECT_EQ(asOrdinaryUser({}, [&] { return remove(); }), 0);
    EXPECT_FALSE(source.exists("item"));
}

TEST_F(HandleRemoval, AFolderOfSomebodyElseStaysAndIsNamed) {
    if (geteuid() != 0) GTEST_SKIP() << "only an administrator can give folders away";
    source.text("item/theirs/file", "content");
    ASSERT_EQ(asOrdinaryUser({source.path()}, [] { return 0; }), 0);
    ASSERT_EQ(chown(source.path("item/theirs").c_str(), 0, 0), 0);
    setMode(source.path("item/theirs"), 0755);
    EXPECT_EQ(asOrdinaryUser({}, [&] { return remove(); }), EACCES);
    EXPECT_EQ(source.read("item/theirs/file"), "content");
}

TEST_F(HandleRemoval, WhatALinkLeadsToStays) {
    target.text("kept/file", "kept");
    source.link("item/link", target.path("kept"));
    source.link("item/file", target.path("kept/file"));
    EXPECT_EQ(remove(), 0);
    source.link("item", target.path("kept"));
    EXPECT_EQ(remove(), 0);
    EXPECT_TRUE(names() == std::set<std::string>{"target/kept"});
    EXPECT_EQ(target.read("kept/file"), "kept");
}

TEST_F(HandleRemoval, AnEntrySwappedForALinkMidwayDoesNotLeadOut) {
    for (int at = 0;; ++at) {
        source.text("item/a/file", "content");
        source.text("item/b/file", "content");
        target.text("kept/file", "kept");
        int call = 0;
        bool swapped = false;
        calls.before = [&](const char*, const char*) {
            if (call++ != at) return;
            for (const char* folder : {"item/a", "item/b"}) {
                if (!source.exists(folder)) continue;
                fs::rename(source.path(folder), target.path("moved away"));
                source.link(folder, target.path("kept"));
                swapped = true;
                return;
            }
        };
        remove();
        calls.before = nullptr;
        EXPECT_EQ(target.read("kept/file"), "kept") << at;
        fs::remove_all(target.path("moved away"));
        EXPECT_EQ(remove(), 0);
        EXPECT_FALSE(source.exists("item"));
        if (!swapped) break;
    }
}

TEST_F(HandleRemoval, TheFolderIsTheOneThatWasOpenedEvenWhenItsPathLeadsElsewhere) {
    source.text("folder/item", "in the opened folder");
    const auto folder = files.openFolder(source.path("folder"), FolderPath::withoutLinks);
    fs::rename(source.path("folder"), source.path("renamed"));
    source.text("folder/item", "in another folder");
    files.removeAll(*folder, "item");
    EXPECT_FALSE(source.exists("renamed/item"));
    EXPECT_EQ(source.read("folder/item"), "in another folder");
}

TEST_F(HandleRemoval, NothingThereIsNoError) {
    EXPECT_EQ(remove(), 0);
    source.text("item", "content");
    source.text("beside", "kept");
    EXPECT_EQ(remove(), 0);
    EXPECT_EQ(remove(), 0);
    EXPECT_EQ(source.read("beside"), "kept");
}

TEST_F(HandleRemoval, AnEmptyFolderGoesAndOneThatHoldsSomethingStays) {
    source.folder("empty");
    source.text("full/file", "kept");
    source.text("file", "kept");
    source.link("link", "empty");
    EXPECT_FALSE(files.removeEmptyFolder(*from, "full"));
    EXPECT_FALSE(files.removeEmptyFolder(*from, "missing"));
    EXPECT_EQ(reasonOf([&] { files.removeEmptyFolder(*from, "file"); }), ENOTDIR);
    EXPECT_EQ(reasonOf([&] { files.removeEmptyFolder(*from, "link"); }), ENOTDIR);
    EXPECT_TRUE(files.removeEmptyFolder(*from, "empty"));
    EXPECT_FALSE(source.exists("empty"));
    EXPECT_EQ(source.read("full/file"), "kept");
    EXPECT_EQ(source.read("file"), "kept");
}

TEST_F(HandleRemoval, ATreeOf2000LevelsGoes) {
    Descriptor folder(open(source.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const char* name = "item";
    for (int level = 0; level < 2'000; ++level) {
        ASSERT_EQ(mkdirat(folder.number(), name, 0700), 0);
        folder = Descriptor(openat(folder.number(), name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        name = "deeper";
    }
    EXPECT_EQ(remove(), 0);
    EXPECT_FALSE(source.exists("item"));
}

}  // namespace
}  // namespace velto
