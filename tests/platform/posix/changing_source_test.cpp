// Somebody works with a file or a folder while it is moved to another volume. What they have done
// is never lost: the item stays, or it arrives as they have left it.

#include <fstream>
#include <map>

#include "platform/posix/MoveWorld.h"
#include "platform/posix/same_state.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

struct Change {
    const char* name;
    std::function<void(const std::string& item)> make;
    /// Only the file's change time tells. Renaming sets it anew, so what is done to the file itself
    /// between the last look and the renaming that follows at once cannot be seen.
    bool isHidden = false;
};

void writeTo(const std::string& path, const std::string& text, std::ios::openmode mode) {
    std::ofstream(path, mode) << text;
}

const std::vector<Change> fileChanges{
    {"content of the same length, time set back",
     [](const std::string& item) {
         struct stat status {};
         ASSERT_EQ(stat(item.c_str(), &status), 0);
         writeTo(item, "CONTENT", std::ios::in | std::ios::out);
         const timespec times[2] = {accessedTime(status), modifiedTime(status)};
         ASSERT_EQ(utimensat(AT_FDCWD, item.c_str(), times, 0), 0);
     },
     true},
    {"longer", [](const std::string& item) { writeTo(item, " and more", std::ios::app); }},
    {"shorter", [](const std::string& item) { fs::resize_file(item, 3); }},
    {"permissions", [](const std::string& item) { setMode(item, 0751); }},
    {"saved anew by an editor",
     [](const std::string& item) {
         writeTo(item + ".new", "another version", std::ios::out);
         fs::rename(item + ".new", item);
     }},
    {"a folder instead",
     [](const std::string& item) {
         fs::remove(item);
         fs::create_directory(item);
         writeTo(item + "/inside", "new", std::ios::out);
     }},
    {"a link instead",
     [](const std::string& item) {
         fs::remove(item);
         fs::create_symlink("elsewhere", item);
     }},
};

const std::vector<Change> folderChanges{
    {"content",
     [](const std::string& item) { writeTo(item + "/a/file", "CONTENT", std::ios::out); }},
    {"added file", [](const std::string& item) { writeTo(item + "/b/new", "new", std::ios::out); }},
    {"added folder", [](const std::string& item) { fs::create_directory(item + "/new"); }},
    {"replaced file",
     [](const std::string& item) {
         writeTo(item + "/new", "another version", std::ios::out);
         fs::rename(item + "/new", item + "/a/file");
     }},
    {"file removed", [](const std::string& item) { fs::remove(item + "/a/file"); }},
    {"time of a file",
     [](const std::string& item) {
         setTimes(item + "/a/file", {5, 0}, {6, 0});
     }},
    {"folder moved within",
     [](const std::string& item) { fs::rename(item + "/b", item + "/a/b"); }},
    {"link leads elsewhere",
     [](const std::string& item) {
         fs::remove(item + "/link");
         fs::create_symlink("elsewhere", item + "/link");
     }},
};

class ChangingSource : public testing::Test {
protected:
    /// Makes the change before the n-th call, for every n, and looks whether it got lost.
    static void changeAtEveryCall(const std::vector<Change>& changes,
                                  const std::function<void(TempHome&)>& makeItem) {
        for (const Change& change : changes) {
            int stayed = 0;
            for (int at = 0;; ++at) {
                MoveWorld world(buildVolume(), otherVolume());
                makeItem(world.source);
                std::string changed;
                int call = 0;
                bool isOver = true;
                world.calls.before = [&](const char* what, const char*) {
                    if (call++ != at) return;
                    // Once the source was put aside nobody finds it by its path any more.
                    isOver = !world.source.exists("item");
                    if (isOver || (change.isHidden && what == std::string("rename"))) return;
                    change.make(world.source.path("item"));
                    changed = treeText(world.source.path("item"));
                };
                const int reason = world.move();
                world.calls.before = nullptr;
                if (changed.empty()) {
                    EXPECT_EQ(reason, 0) << change.name;
                    if (isOver) break;
                    continue;
                }
                const std::string where =
                    std::string(change.name) + " before call " + std::to_string(at);
                if (reason == 0) {
                    EXPECT_EQ(treeText(world.target.path("moved")), changed) << where;
                    EXPECT_TRUE(world.isOnlyAtTarget()) << where;
                } else {
                    ++stayed;
                    EXPECT_EQ(treeText(world.source.path("item")), changed) << where;
                    EXPECT_TRUE(world.isOnlyAtSource()) << where;
                }
                if (testing::Test::HasFailure()) return;
                ASSERT_LT(at, 500) << "the move never ends";
            }
            EXPECT_GT(stayed, 2) << change.name << ": the change was never noticed";
        }
    }
};

TEST_F(ChangingSource, AFileThatIsWorkedWithIsNotLost) {
    changeAtEveryCall(fileChanges, [](TempHome& home) { home.text("item", "content"); });
}

TEST_F(ChangingSource, AFolderThatIsWorkedInIsNotLost) {
    changeAtEveryCall(folderChanges, [](TempHome& home) {
        home.text("item/a/file", "content");
        home.text("item/b/file", "content");
        home.link("item/link", "a/file");
    });
}

TEST_F(ChangingSource, ABigFileThatBecomesShorterWhileItIsCopiedStays) {
    MoveWorld world(buildVolume(), otherVolume());
    world.source.file("item", 5'000'000);
    int writes = 0;
    world.calls.before = [&](const char* call, const char*) {
        if (std::string(call) == "writeAt" && ++writes == 2) {
            fs::resize_file(world.source.path("item"), 1'500'000);
        }
    };
    EXPECT_EQ(world.move(), EBUSY);
    EXPECT_GE(writes, 2);
    EXPECT_TRUE(world.isOnlyAtSource());
    EXPECT_EQ(fs::file_size(world.source.path("item")), 1'500'000u);
}

}  // namespace
}  // namespace velto
