#include "cleaning/HistoryService.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include "TrashWorld.h"
#include "support/TempHome.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

struct HistoryTest : testing::Test {
    TempHome home{TrashWorld::fastVolume()};
    HomeLayout layout = HomeLayout::macOS(home.path());
    PosixFileManager files;
    FakeLog log;
    const std::string path = home.path("Library/Application Support/Velto/history.json");

    HistoryService history() { return {files, files, log, layout}; }
    std::string written() const { return files.read(path, ownFile(1 << 20)); }

    void write(const std::string& text) {
        files.createFolders(layout.dataFolder);
        files.writeAtomically(path, text);
    }

    static Operation operation(const std::string& id, const std::vector<TrashItem>& items = {}) {
        return {.id = id, .ts = 1'700'000'000.5, .gb = 1.5, .items = items, .kind = "wind"};
    }

    static TrashItem item(const std::string& name, double gb) {
        return {
            .id = "it1", .opID = "op1", .originalPath = "/h/x", .name = name, .gb = gb, .taken = 1};
    }

    static std::vector<std::string> ids(const HistoryService& history) {
        std::vector<std::string> all;
        for (const HistoryEntry& entry : history.entries())
            all.push_back(entry.id);
        return all;
    }
};

TEST_F(HistoryTest, TwoCleanupsAreTwoEntriesTheLaterFirst) {
    HistoryService past = history();
    past.record(operation("op1"));
    past.record(operation("op2"));
    EXPECT_THAT(ids(past), ElementsAre("op2", "op1"));
    EXPECT_THAT(ids(history()), ElementsAre("op2", "op1"));
}

TEST_F(HistoryTest, AnEntrySaysWhatWasCleaned) {
    HistoryService past = history();
    past.record(operation("op1", {item("a", 0.25), item("b", 1), item("a", 0)}));
    const HistoryEntry expected{.id = "op1",
                                .ts = 1'700'000'000.5,
                                .gb = 1.5,
                                .items = {{"a", 0.25}, {"b", 1}, {"a", 0}},
                                .kind = "wind"};
    EXPECT_THAT(past.entries(), ElementsAre(expected));
    EXPECT_THAT(history().entries(), ElementsAre(expected));
}

TEST_F(HistoryTest, TheFileIsACompactListOfEntries) {
    HistoryService past = history();
    past.record(operation("op1", {item("a \"b\"", 0.5)}));
    const auto list = nlohmann::json::parse(written());
    EXPECT_EQ(list, nlohmann::json::parse(R"([{"id":"op1","ts":1700000000.5,"gb":1.5,
        "items":[{"name":"a \"b\"","gb":0.5}],"kind":"wind"}])"));
    EXPECT_EQ(written(), list.dump()) << "not compact";
}

TEST_F(HistoryTest, AnUndoneCleanupLeavesTheHistory) {
    HistoryService past = history();
    for (const char* id : {"op1", "op2", "op3"})
        past.record(operation(id));
    past.remove("op2");
    EXPECT_THAT(ids(past), ElementsAre("op3", "op1"));
    EXPECT_THAT(ids(history()), ElementsAre("op3", "op1"));
    past.remove("op7");
    EXPECT_THAT(ids(history()), ElementsAre("op3", "op1"));
}

TEST_F(HistoryTest, ClearingForgetsEverythingAndIsLogged) {
    HistoryService past = history();
    past.record(operation("op1"));
    past.clear();
    EXPECT_TRUE(past.entries().empty());
    EXPECT_EQ(written(), "[]");
    EXPECT_THAT(log.lines(), ElementsAre("Velto ▶ historial vaciado"));
}

TEST_F(HistoryTest, ClearingAnEmptyHistoryDoesNothing) {
    HistoryService past = history();
    past.clear();
    EXPECT_FALSE(files.exists(path));
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(HistoryTest, ReadingMakesNothing) {
    EXPECT_TRUE(history().entries().empty());
    EXPECT_FALSE(files.exists(layout.dataFolder));
}

TEST_F(HistoryTest, ADamagedHistoryIsEmptyAndTheNextCleanupReplacesIt) {
    const std::string damages[] = {
        "",
        "{}",
        "[{}]",
        "[",
        "\xff",
        R"([{"id":"op1","ts":1,"gb":1,"items":[]}])",
        R"([{"id":"op1","ts":"1","gb":1,"items":[],"kind":"wind"}])",
        R"([{"id":"op1","ts":1,"gb":1,"items":[{"name":"a"}],"kind":"wind"}])"};
    for (const std::string& damaged : damages) {
        write(damaged);
        HistoryService past = history();
        EXPECT_TRUE(past.entries().empty()) << damaged;
        EXPECT_EQ(written(), damaged) << "reading has written";
        past.record(operation("op2"));
        EXPECT_THAT(ids(history()), ElementsAre("op2")) << damaged;
    }
}

TEST_F(HistoryTest, WhatCannotBeSavedStaysInForce) {
    HistoryService past = history();
    past.record(operation("op1"));
    files.removeAll(path);
    files.createFolders(path + "/in the way");
    past.record(operation("op2"));
    EXPECT_THAT(ids(past), ElementsAre("op2", "op1"));
    files.removeAll(path);
    past.record(operation("op3"));
    EXPECT_THAT(ids(history()), ElementsAre("op3", "op2", "op1")) << "the next save has all";
}

TEST_F(HistoryTest, TheFileIsReplacedInOneStep) {
    HistoryService past = history();
    past.record(operation("op1"));
    const auto before = files.openVersion(path, ownFile(1 << 20));
    const std::string old = before->read();
    past.record(operation("op2"));
    EXPECT_FALSE(before->isCurrent());
    EXPECT_EQ(before->read(), old) << "the old file was written over";
    EXPECT_THAT(files.list(layout.dataFolder),
                UnorderedElementsAre("history.json", "history.json.lock"));
}

TEST_F(HistoryTest, WhatTwoProcessesRecordIsKeptFromBoth) {
    HistoryService window = history();
    HistoryService maintenance = history();
    window.record(operation("op1"));
    maintenance.record(operation("op2"));
    window.record(operation("op3"));
    EXPECT_THAT(ids(window), ElementsAre("op3", "op2", "op1"));
    EXPECT_THAT(ids(history()), ElementsAre("op3", "op2", "op1"));
}

TEST_F(HistoryTest, WhatOneProcessRemovesTheOtherDoesNotBringBack) {
    HistoryService window = history();
    for (const char* id : {"op1", "op2", "op3"})
        window.record(operation(id));
    HistoryService maintenance = history();
    window.remove("op2");
    maintenance.record(operation("op4"));
    EXPECT_THAT(ids(history()), ElementsAre("op4", "op3", "op1"));
    maintenance.clear();
    window.record(operation("op5"));
    EXPECT_THAT(ids(history()), ElementsAre("op5"));
}

TEST_F(HistoryTest, ClearingTakesWhatAnotherProcessHasRecordedToo) {
    HistoryService window = history();
    history().record(operation("op1"));
    window.clear();
    EXPECT_EQ(written(), "[]");
    EXPECT_THAT(log.lines(), ElementsAre("Velto ▶ historial vaciado"));
}

TEST_F(HistoryTest, WhatCouldNotBeSavedOrRemovedIsMadeUpForBesideTheOthersChanges) {
    struct FullDisk final : PosixFileManager {
        void writeAtomically(const std::string& file, std::string_view content) override {
            if (isFull) throw FileError("write", file, ENOSPC);
            PosixFileManager::writeAtomically(file, content);
        }
        bool isFull = false;
    } disk;
    HistoryService past(disk, disk, log, layout);
    past.record(operation("op1"));
    past.record(operation("op2"));
    disk.isFull = true;
    past.record(operation("op3"));
    past.remove("op1");
    history().record(operation("op4"));
    disk.isFull = false;
    past.record(operation("op5"));
    EXPECT_THAT(ids(history()), UnorderedElementsAre("op5", "op4", "op3", "op2"));
    EXPECT_EQ(ids(history()), ids(past));
}

TEST_F(HistoryTest, NothingGetsLostWhenTwoProcessesWriteAtOnce) {
    constexpr int each = 40;
    std::vector<pid_t> children;
    for (const char* worker : {"a", "b"}) {
        children.push_back(fork());
        if (children.back() != 0) continue;
        HistoryService past = history();
        for (int number = 0; number < each; ++number)
            past.record(operation(worker + std::to_string(number)));
        _exit(0);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
    }
    EXPECT_EQ(history().entries().size(), 2u * each);
}

TEST_F(HistoryTest, NoNumberOfEntriesIsTooMany) {
    history().record(operation("first"));
    nlohmann::json past = nlohmann::json::parse(written());
    nlohmann::json entry = past.at(0);
    for (int number = 0; number < 1'000; ++number) {
        entry["id"] = std::to_string(number);
        past.push_back(entry);
    }
    write(past.dump());
    history().record(operation("last"));
    EXPECT_EQ(history().entries().size(), 1'002u);
}

}  // namespace
}  // namespace velto
