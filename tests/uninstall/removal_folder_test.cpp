// The folder in which a removal puts what it deletes: what may be deleted in it, where it may lie,
// and what happens to something that was put in an item's place meanwhile.

#include <gmock/gmock.h>

#include <filesystem>

#include "UninstallWorld.h"
#include "support/tree_text.h"

namespace velto {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

constexpr const char* removalID = "0F8FAD5B-D9CB-469F-A165-70867728950E";

class RemovalFolderTest : public testing::Test, protected UninstallWorld {
protected:
    void SetUp() override {
        entry = *apps.readApp(application("Foobar"));
        cache = library("Caches/com.example.foobar/data");
        chosen = {entry.path, home.path("Library/Caches/com.example.foobar")};
    }
    std::string removing(const std::string& below = "") const {
        const std::string& folder = machine.platform.layout.removalFolder;
        return below.empty() ? folder : folder + "/" + below;
    }
    std::string dataFolder() const { return machine.platform.layout.dataFolder; }
    /// Documents with all that a sweep could take for its own.
    void fillDocuments() {
        home.text("Documents/thesis.pages", "thesis");
        home.text(std::string("Documents/") + removalID, "precious");
        home.text(std::string("Documents/") + removalID + ".path", "precious");
        documents = treeText(home.path("Documents"));
    }
    void expectNothingRemoved(const AppRemover::Result& result) const {
        EXPECT_EQ(result.removed, 0);
        ASSERT_EQ(result.failures.size(), chosen.size());
        for (std::size_t index = 0; index < chosen.size(); ++index) {
            EXPECT_EQ(result.failures[index].path, chosen[index]);
            EXPECT_EQ(result.failures[index].reason, "other");
            EXPECT_TRUE(fs::exists(chosen[index]));
        }
    }

    AppEntry entry;
    std::string cache;
    std::vector<std::string> chosen;
    std::string documents;
};

// Where it lies

TEST_F(RemovalFolderTest, ALinkInItsPlaceEmptiesNothingBehindIt) {
    fillDocuments();
    home.folder("Library/Application Support/Velto");
    home.link("Library/Application Support/Velto/Removing", home.path("Documents"));
    expectNothingRemoved(remover.uninstall(entry, chosen));
    EXPECT_EQ(treeText(home.path("Documents")), documents);
}

TEST_F(RemovalFolderTest, ALinkThatLeadsNowhereMakesNothingAtItsEnd) {
    home.folder("Library/Application Support/Velto");
    home.link("Library/Application Support/Velto/Removing", home.path("Documents/new"));
    expectNothingRemoved(remover.uninstall(entry, chosen));
    EXPECT_FALSE(home.exists("Documents"));
}

TEST_F(RemovalFolderTest, AFileInItsPlaceStays) {
    library("Application Support/Velto/Removing", "a file");
    expectNothingRemoved(remover.uninstall(entry, chosen));
    EXPECT_EQ(home.read("Library/Application Support/Velto/Removing"), "a file");
}

TEST_F(RemovalFolderTest, ADataFolderThatLeadsOutOfTheHomeIsNotUsed) {
    put(disk.path("elsewhere/Removing/") + removalID, "precious");
    home.link("Library/Application Support/Velto", disk.path("elsewhere"));
    expectNothingRemoved(remover.uninstall(entry, chosen));
    ASSERT_TRUE(disk.exists(std::string("elsewhere/Removing/") + removalID));
}

TEST_F(RemovalFolderTest, ADataFolderThatIsALinkInsideTheHomeServes) {
    home.text(std::string("Elsewhere/Removing/") + removalID, "of a removal that was cut off");
    home.link("Library/Application Support/Velto", home.path("Elsewhere"));
    EXPECT_EQ(remover.uninstall(entry, chosen).removed, 2);
    EXPECT_FALSE(fs::exists(cache));
    EXPECT_TRUE(fs::is_empty(home.path("Elsewhere/Removing")));
}

TEST_F(RemovalFolderTest, ADataFolderThatTheUserHasPutOutsideTheHomeServes) {
    machine.platform.layout.dataFolder = disk.path("data/Velto");
    machine.platform.layout.removalFolder = disk.path("data/Velto/Removing");
    EXPECT_EQ(remover.uninstall(entry, chosen).removed, 2);
    EXPECT_FALSE(fs::exists(cache));
}

// What may be deleted in it

TEST_F(RemovalFolderTest, OnlyWhatARemovalHasPutThereIsSwept) {
    const std::string own = removalID;
    const std::string foreign[] = {"thesis.pages",
                                   ".keep",
                                   own + ".txt",
                                   own + "-2",
                                   "kept-" + own,
                                   "x" + own,
                                   own + ".path.path",
                                   "2f8fad5b-d9cb-469f-a165-70867728950e",
                                   "0F8FAD5BD-9CB-469F-A165-70867728950E",
                                   "0F8FAD5B-D9CB-469F-A165-70867728950G",
                                   ".velto-0123456789abcdeg",
                                   ".path",
                                   "abc.path"};
    for (const std::string& name : foreign)
        put(removing(name), "precious");
    put(removing("folder/" + own), "precious");
    put(removing(own + "/a/b"), "left");
    put(removing("1" + own.substr(1) + ".path"), home.path("nothing"));
    put(removing(".velto-0123456789abcdef"), "half a record");
    remover.uninstall(entry, {});
    for (const std::string& name : foreign)
        EXPECT_TRUE(fs::exists(removing(name))) << name;
    EXPECT_TRUE(fs::exists(removing("folder/" + own)));
    EXPECT_EQ(machine.platform.files->list(removing()).size(), std::size(foreign) + 1);
}

TEST_F(RemovalFolderTest, AForgedRecordDeletesNothing) {
    const std::string rest = std::string(".velto-removing-") + removalID;
    home.folder("Pictures");
    home.link("Library/Caches/link", home.path("Pictures"));
    const std::string places[] = {disk.path(),
                                  home.path("Library/Application Support/Velto/Trash"),
                                  home.path("Library/Mail"),
                                  home.path("Pictures/Photos Library.photoslibrary"),
                                  home.path("Library/Application Support/MobileSync"),
                                  machine.platform.layout.cloudFolder};
    for (const std::string& place : places)
        put(place + "/" + rest + "/precious", "precious");
    put(home.path("Pictures/" + rest + "/precious"), "precious");
    put(home.path("Documents/thesis"), "precious");
    std::vector<std::string> claims{
        "",
        "/",
        rest,
        home.path(),
        home.path("Documents"),
        home.path("Documents/thesis"),
        home.path("Documents/.velto-removing-" + std::string(36, '0')),
        home.path("Library/Caches/link/" + rest),            // through a link
        home.path("Library/Caches/../../Pictures/" + rest),  // not as a removal writes it
        home.path("Pictures//" + rest),
        home.path("Pictures/" + rest) + "\n",
        home.path("Pictures/" + rest) + std::string(1, '\0'),
        home.path("Pictures/" + rest + "/precious"),
        std::string(100'000, '/') + home.path("Pictures/" + rest)};
    for (const std::string& place : places)
        claims.push_back(place + "/" + rest);
    for (const std::string& claim : claims) {
        SCOPED_TRACE(claim.substr(0, 200));
        put(removing(std::string(removalID) + ".path"), claim);
        remover.uninstall(entry, {});
        for (const std::string& place : places)
            EXPECT_TRUE(fs::exists(place + "/" + rest + "/precious")) << place;
        EXPECT_TRUE(home.exists("Pictures/" + rest + "/precious"));
        EXPECT_TRUE(home.exists("Documents/thesis"));
    }
    // Nor does a link or a pipe in a record's place.
    put(home.path("note"), home.path("Pictures/" + rest));
    fs::create_symlink(home.path("note"), removing(std::string(removalID) + ".path"));
    remover.uninstall(entry, {});
    EXPECT_TRUE(home.exists("Pictures/" + rest + "/precious"));
    // A record as a removal writes it does.
    put(removing(std::string(removalID) + ".path"), home.path("Pictures/" + rest));
    remover.uninstall(entry, {});
    EXPECT_FALSE(home.exists("Pictures/" + rest));
}

// What was put in an item's place

/// Swaps the chosen folder for another one just before it is moved aside, and lets something new
/// stand at its place just before that one would go back.
class SwappedItemTest : public RemovalFolderTest {
protected:
    void swapAndBlock() {
        int moves = 0;
        calls.before = [this, moves](const char* call, const char*) mutable {
            if (std::string(call) != "rename") return;
            ++moves;
            if (moves == 1) {
                fs::rename(chosen[1], home.path("judged"));
                put(chosen[1] + "/thesis", "precious");
            } else if (moves == 2 && blocks) {
                put(chosen[1], "new");
            }
        };
    }
    /// How often the swapped content is in the home.
    std::vector<std::string> precious() const {
        std::vector<std::string> found;
        for (const auto& item : fs::recursive_directory_iterator(home.path())) {
            if (item.path().filename() == "thesis") found.push_back(item.path());
        }
        return found;
    }

    bool blocks = true;
};

TEST_F(SwappedItemTest, ItGoesBackWhenItsPlaceIsFree) {
    blocks = false;
    swapAndBlock();
    const auto result = remover.uninstall(entry, {chosen[1]});
    calls.before = nullptr;
    ASSERT_EQ(result.failures.size(), 1u);
    EXPECT_EQ(result.failures[0].reason, "busy");
    EXPECT_EQ(result.failures[0].path, chosen[1]);
    EXPECT_TRUE(fs::exists(chosen[1] + "/thesis"));
}

TEST_F(SwappedItemTest, ItIsKeptForGoodWhenItsPlaceIsTaken) {
    swapAndBlock();
    const auto result = remover.uninstall(entry, {chosen[1]});
    calls.before = nullptr;
    EXPECT_EQ(result.removed, 0);
    ASSERT_EQ(result.failures.size(), 1u);
    const std::string kept = result.failures[0].path;
    EXPECT_TRUE(kept.starts_with(removing("kept-"))) << kept;
    EXPECT_EQ(result.failures[0].reason, "busy");
    remover.uninstall(entry, {});  // sweeps
    EXPECT_TRUE(fs::exists(kept + "/thesis"));
    EXPECT_TRUE(fs::is_regular_file(chosen[1])) << "what is new stays too";
}

TEST_F(SwappedItemTest, TheSameWhereTheRemovalFolderIsOnAnotherVolume) {
    if (!hasTwoVolumes()) GTEST_SKIP() << "memory and build folder are one volume here";
    const TempHome elsewhere(buildVolume());
    machine.platform.layout.dataFolder = elsewhere.path();
    machine.platform.layout.removalFolder = elsewhere.path("Removing");
    int moves = 0;
    calls.before = [&](const char* call, const char* name) {
        if (std::string(call) != "rename") return;
        if (std::string_view(name).starts_with(".velto-removing-")) {
            fs::rename(chosen[1], home.path("judged"));
            put(chosen[1] + "/thesis", "precious");
        } else if (++moves == 2) {
            put(chosen[1], "new");
        }
    };
    const auto result = remover.uninstall(entry, {chosen[1]});
    calls.before = nullptr;
    ASSERT_EQ(result.failures.size(), 1u);
    EXPECT_TRUE(result.failures[0].path.starts_with(home.path("Library/Caches/kept-")))
        << result.failures[0].path;
    remover.uninstall(entry, {});
    EXPECT_TRUE(fs::exists(result.failures[0].path + "/thesis"));
    EXPECT_THAT(machine.platform.files->list(elsewhere.path("Removing")), IsEmpty());
}

TEST_F(SwappedItemTest, AVolumeThatCannotRenameWithoutReplacingKeepsItToo) {
    calls.knowsExclusiveRename = false;
    EXPECT_EQ(remover.uninstall(entry, {entry.path}).removed, 1) << "deleting works there";
    bool isSwapped = false;
    calls.before = [&](const char* call, const char* name) {
        // The record that tells where the item will wait is written; then the item is moved.
        if (isSwapped || std::string(call) != "replace" || !std::string(name).ends_with(".path")) {
            return;
        }
        isSwapped = true;
        fs::rename(chosen[1], home.path("judged"));
        put(chosen[1] + "/thesis", "precious");
    };
    EXPECT_EQ(remover.uninstall(entry, {chosen[1]}).removed, 0);
    calls.before = nullptr;
    ASSERT_TRUE(isSwapped);
    remover.uninstall(entry, {});
    EXPECT_EQ(precious().size(), 1u);
}

TEST_F(SwappedItemTest, WhicheverCallFailsItIsNeverDeleted) {
    for (const bool isBlocked : {false, true}) {
        blocks = isBlocked;
        bool isComplete = false;
        for (int at = 0; !isComplete; ++at) {
            SCOPED_TRACE(testing::Message() << "call " << at << (blocks ? ", blocked" : ""));
            fs::remove_all(home.path("judged"));
            fs::remove_all(removing());
            fs::remove_all(chosen[1]);
            put(chosen[1] + "/data", "cache");
            calls.count = 0;
            calls.at = at;
            calls.action = WatchedFileCalls::Action::fail;
            swapAndBlock();
            const auto result = remover.uninstall(entry, {chosen[1]});
            isComplete = calls.count <= at;
            calls.before = nullptr;
            calls.action = WatchedFileCalls::Action::none;
            EXPECT_EQ(result.removed, 0);
            remover.uninstall(entry, {});
            // Nothing was swapped when the call that failed came before the first move.
            const std::size_t expected = fs::exists(home.path("judged")) ? 1 : 0;
            EXPECT_EQ(precious().size(), expected);
            if (HasFailure()) return;
        }
    }
}

}  // namespace
}  // namespace velto
