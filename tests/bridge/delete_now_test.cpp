#include <filesystem>

#include "platform/posix/PosixFileManager.h"
#include "support/WatchedFileCalls.h"
#include "support/tree_text.h"

#include "TrashFixture.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// A disk of 500 GB with 2 GB left, two caches that are certain and one that is not, all proposed.
struct DeleteNow : BridgeFixture {
    WatchedFileCalls calls;
    PosixFileManager files{calls};
    VeltoTrashService watchedTrash{files, files, machine.clock, machine.log,
                                   machine.platform.layout};
    std::string first, second, doubtful, film;

    void SetUp() override {
        first = cache("com.example.first");
        second = cache("com.example.second");
        doubtful = cache("rclone");
        film = machine.home.text("Movies/film.mov", "the only copy").path();
        machine.volumes.available = 2'000'000'000;
        saveAnalysis(1'600'000'000);
        cleanups = std::make_unique<CleanupQueue>(
            *machine.platform.dispatcher,
            CleanupServices{.trash = watchedTrash, .history = history, .cloud = cloud});
        openAnother();
        load();
        machine.dispatcher.runAll();
        post("scanCleanables");
        machine.dispatcher.runAll();
        page->scripts.clear();
    }

    std::string cache(const std::string& name) {
        machine.home.sparse("Library/Caches/" + name + "/blob", 60'000'000);
        return machine.home.path("Library/Caches/" + name);
    }

    void ask(const json& paths) {
        post("deleteNow", {{"paths", paths}});
        machine.dispatcher.runAll();
    }

    /// Nothing has left its place, and the page is told why.
    void expectRefused(const std::string& why) {
        EXPECT_EQ(page->calls("toast").back(), toastScript("Couldn't delete now", why));
        EXPECT_THAT(watchedTrash.items(), IsEmpty());
        EXPECT_THAT(history.entries(), IsEmpty());
        for (const std::string& path : {first, second, doubtful, film})
            EXPECT_TRUE(machine.platform.files->exists(path)) << path;
    }
};

TEST_F(DeleteNow, WhatIsCertainGoesAtOnceAndTheHistoryKeepsIt) {
    ask({first, second});
    EXPECT_FALSE(machine.platform.files->exists(first));
    EXPECT_FALSE(machine.platform.files->exists(second));
    EXPECT_THAT(watchedTrash.items(), IsEmpty());
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Deleted for good", "2 items; their space is free again."));
    ASSERT_THAT(history.entries(), SizeIs(1));
    EXPECT_THAT(history.entries()[0].items, SizeIs(2));
    EXPECT_THAT(page->calls("setState").back(), HasSubstr("com.example.first"));
    EXPECT_TRUE(machine.platform.files->exists(doubtful));

    post("undoLast");
    machine.dispatcher.runAll();
    EXPECT_FALSE(machine.platform.files->exists(first)) << "deleted is deleted";
}

TEST_F(DeleteNow, OnADiskWithRoomNothingIsDeleted) {
    machine.volumes.available = 40'000'000'000;  // under a tenth of it, but not little
    ask({first});
    expectRefused("The disk is not nearly full any more.");
    machine.volumes.total = 20'000'000'000;
    machine.volumes.available = 4'000'000'000;  // little, but a fifth of it
    ask({first});
    expectRefused("The disk is not nearly full any more.");
    machine.volumes.total.reset();
    ask({first});
    expectRefused("The disk is not nearly full any more.");
}

TEST_F(DeleteNow, WhatIsNotCertainOrWasNeverProposedStopsAll) {
    const char* const why = "Some of it is not certain any more: it may be in use. Look again.";
    ask({first, doubtful});
    expectRefused(why);
    ask({first, film});
    expectRefused(why);
    ask({machine.home.path("Library/Caches")});
    expectRefused(why);
    machine.running.add({.bundleIdentifier = "com.example.second",
                         .bundlePath = "/Applications/Second.app",
                         .executable = "/Applications/Second.app/Contents/MacOS/Second"});
    ask({first, second});
    expectRefused(why);
}

TEST_F(DeleteNow, ALinkThatHasTakenItsPlaceLeadsNowhere) {
    std::filesystem::remove_all(first);
    std::filesystem::create_symlink(machine.home.path("Movies"), first);
    ask({first, second});
    EXPECT_THAT(page->calls("toast").back(), HasSubstr("Couldn't delete now"));
    EXPECT_EQ(lastArgument(*page, "onRefused")["refused"],
              json({{{"path", first}, {"reason", "link"}}}));
    EXPECT_EQ(machine.home.read("Movies/film.mov"), "the only copy");
    EXPECT_TRUE(machine.platform.files->exists(second));
    EXPECT_THAT(watchedTrash.items(), IsEmpty());
}

TEST_F(DeleteNow, WhatCannotBeMovedStaysWhereItIs) {
    calls.refuses = [](std::string_view call, std::string_view name) {
        return call == "rename" && name.ends_with("com.example.second") ? EIO : 0;
    };
    ask({first, second});
    EXPECT_THAT(page->calls("toast").back(), HasSubstr("Couldn't delete now"));
    EXPECT_TRUE(machine.platform.files->exists(first + "/blob"));
    EXPECT_TRUE(machine.platform.files->exists(second + "/blob"));
    EXPECT_THAT(watchedTrash.items(), IsEmpty());
    EXPECT_THAT(history.entries(), IsEmpty());
}

TEST_F(DeleteNow, WhatCannotBeDeletedWaitsInTheTrashAndCanGoBack) {
    bool isFirst = true;
    calls.refuses = [&](std::string_view call, std::string_view name) {
        if (call != "remove" || !name.ends_with("blob")) return 0;
        return std::exchange(isFirst, false) ? 0 : EIO;
    };
    ask({first, second});
    const std::string toast = page->calls("toast").back();
    EXPECT_THAT(toast, HasSubstr("\"Deleted in part\", \"The disk could not read or write"));
    EXPECT_THAT(toast, HasSubstr("Deleted: 1 of 2. The rest is in Velto Trash."));
    ASSERT_THAT(watchedTrash.items(), SizeIs(1));
    EXPECT_THAT(history.entries(), SizeIs(1));
    calls.refuses = nullptr;
    post("restoreItem", watchedTrash.items()[0].id);
    machine.dispatcher.runAll();
    EXPECT_TRUE(machine.platform.files->exists(second + "/blob"));
    EXPECT_FALSE(machine.platform.files->exists(first));
}

TEST_F(DeleteNow, MalformedPayloadsDoNothing) {
    for (const json& payload : {json::object(), json{{"paths", "x"}},
                                json{{"paths", json::array()}}, json("x"), json(nullptr)}) {
        post("deleteNow", payload);
        machine.dispatcher.runAll();
    }
    EXPECT_EQ(count("toast"), 0u);
    EXPECT_TRUE(machine.platform.files->exists(first));
}

}  // namespace
}  // namespace velto
