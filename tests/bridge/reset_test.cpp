// A reset takes everything away, or says what stays.

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>

#include "bridge/TrashFixture.h"
#include "platform/posix/PosixFileManager.h"
#include "support/ordinary_user.h"

namespace velto {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

/// Does not remove what bears that name, and waits for no lock.
class StubbornFiles final : public PosixFileManager {
public:
    StubbornFiles() : PosixFileManager(systemFileCalls(), {std::chrono::milliseconds(1)}) {}

    using PosixFileManager::removeAll;
    void removeAll(const FolderHandle& parent, const std::string& name) override {
        const auto inside = attributes(parent, name);
        const bool isOperation =
            inside && inside->kind == FileKind::folder && name.starts_with("op");
        if (isOperation && std::ranges::any_of(list(*openFolder(parent, name)), resists)) {
            throw FileError("remove", name + "/inside", EACCES);
        }
        if (resists(name)) throw FileError("remove", "/resisting/" + name, EACCES);
        PosixFileManager::removeAll(parent, name);
    }

private:
    static bool resists(const std::string& name) { return name.ends_with("-film.mov"); }
};

/// The window of a trash in which something resists.
struct Reset : TrashFixture {
    StubbornFiles files;
    VeltoTrashService stubborn{files, files, machine.clock, machine.log, machine.platform.layout};

    void SetUp() override {
        TrashFixture::SetUp();
        cleanups = std::make_unique<CleanupQueue>(
            *machine.platform.dispatcher,
            CleanupServices{.trash = stubborn, .history = history, .cloud = cloud});
        page = std::make_shared<FakeWebView>();
        openAnother();
        load();
        machine.dispatcher.runAll();
    }

    std::string data(const std::string& name) const { return dataFolder + "/" + name; }
};

TEST_F(Reset, ThePageHearsThatNothingIsScheduledAnyMore) {
    post("settings", {{"enabled", true}});
    machine.dispatcher.runAll();
    ASSERT_TRUE(lastArgument(*page, "onMaintenance")["installed"]);
    page->scripts.clear();
    post("resetVelto");
    machine.dispatcher.runAll();
    ASSERT_EQ(count("onMaintenance"), 1u);
    EXPECT_FALSE(lastArgument(*page, "onMaintenance")["installed"]);
    EXPECT_TRUE(lastArgument(*page, "onMaintenance")["next"].is_null());
}

TEST_F(Reset, ThePageHearsWhatIsStillThere) {
    usage.record("com.example.App", 5);
    usage.save();
    page->scripts.clear();
    post("resetVelto");
    machine.dispatcher.runAll();
    ASSERT_EQ(count("onAbout"), 1u);
    const auto about = lastArgument(*page, "onAbout");
    for (const auto& place : about["places"]) {
        if (place["role"] != "settings") EXPECT_EQ(place["there"], false) << place;
    }
    ASSERT_EQ(count("onAppUses"), 1u);
    EXPECT_EQ(lastArgument(*page, "onAppUses")["applications"], 0);
}

TEST_F(Reset, WhatStaysIsToldAndStaysListed) {
    remove({archive, copy1});
    remove({film, copy2});
    ASSERT_THAT(stubborn.items(), SizeIs(4));
    ask("addExclusion", "/h/Music");
    ask("resetVelto");
    EXPECT_THAT(page->calls("toast").back(), HasSubstr("has not been reset completely"));
    EXPECT_THAT(page->calls("toast").back(), HasSubstr("-film.mov"));
    EXPECT_FALSE(machine.log.holds("Velto ▶ reset completo: LaunchAgent y datos eliminados"));
    ASSERT_THAT(stubborn.items(), SizeIs(1));
    EXPECT_EQ(stubborn.items()[0].originalPath, film);
    EXPECT_THAT(lastArgument(*page, "onTrashState"), SizeIs(1));
    EXPECT_FALSE(machine.home.exists(data("exclusions.json")));
    EXPECT_FALSE(machine.home.exists(data("history.json")));
    VeltoTrashService next{*machine.platform.files, *machine.platform.mover, machine.clock,
                           machine.log, machine.platform.layout};
    ASSERT_THAT(next.items(), SizeIs(1));
    next.restore(next.items()[0].id);
    EXPECT_TRUE(machine.home.exists("Movies/film.mov"));
}

TEST_F(Reset, NothingOfTheDataGoesWhileAnotherProcessUsesTheTrash) {
    remove({archive});
    const auto held =
        machine.platform.mover->lock(machine.platform.layout.trashFolder + ".lock", true);
    ask("resetVelto");
    EXPECT_THAT(page->calls("toast").back(), HasSubstr("has not been reset completely"));
    EXPECT_THAT(page->calls("toast").back(), HasSubstr("Another Velto is using the trash"));
    EXPECT_TRUE(machine.home.exists(data("Trash/manifest.json")));
    EXPECT_TRUE(machine.home.exists(data("history.json")));
    EXPECT_THAT(stubborn.items(), SizeIs(1));
}

TEST_F(Reset, ReadOnlyFoldersInTheTrashGoToo) {
    // As the cache of a build tool makes them.
    machine.home.text("cache/module/a/source", "a");
    machine.home.text("cache/module/b/source", "b");
    remove({machine.home.path("cache"), archive});
    const std::string folder = machine.home.path(dataFolder);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const bool isDeep = entry.path().string().find("/module") != std::string::npos;
        if (isDeep && entry.is_directory()) ASSERT_EQ(chmod(entry.path().c_str(), 0555), 0);
    }
    const int result = asOrdinaryUser({machine.home.path()}, [&] {
        const auto remains = resetLocalData(machine.platform, trash);
        if (remains) return 1;
        return std::filesystem::exists(folder) ? 2 : 0;
    });
    EXPECT_EQ(result, 0) << "1: something stayed, 2: and was not told";
}

}  // namespace
}  // namespace velto
