#include "cleaning/HistoryService.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "TrashWorld.h"
#include "support/TempHome.h"

namespace velto {
namespace {

using testing::ElementsAre;

struct HistoryTest : testing::Test {
    TempHome home{TrashWorld::fastVolume()};
    HomeLayout layout = HomeLayout::macOS(home.path());
    PosixFileManager files;
    FakeLog log;
    const std::string path = home.path("Library/Application Support/Velto/history.json");

    HistoryService history() { return {files, log, layout}; }
    std::string written() const { return files.read(path); }

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
    const auto before = files.openVersion(path);
    const std::string old = before->read();
    past.record(operation("op2"));
    EXPECT_FALSE(before->isCurrent());
    EXPECT_EQ(before->read(), old) << "the old file was written over";
    EXPECT_THAT(files.list(layout.dataFolder), ElementsAre("history.json"));
}

TEST_F(HistoryTest, NoNumberOfEntriesIsTooMany) {
    HistoryService past = history();
    for (int number = 0; number < 300; ++number)
        past.record(operation(std::to_string(number)));
    EXPECT_EQ(history().entries().size(), 300u);
}

}  // namespace
}  // namespace velto
