#include "bridge/MeasurementIntents.h"

#include <atomic>
#include <cmath>
#include <filesystem>

#include "bridge/TrashFixture.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// A window over a saved analysis, its page loaded.
struct SavedMeasurement : TrashFixture {
    json sizes(const char* part) const {
        json found;
        for (const std::string& script : page->calls("onExactSizes")) {
            const std::size_t begin = script.rfind("onExactSizes(") + 13;
            const auto told = json::parse(script.substr(begin, script.rfind(");") - begin));
            if (told.contains(part)) found = told[part];
        }
        return found;
    }
    std::int64_t allocated(const std::string& path) const {
        return machine.platform.files->attributes(path)->allocatedSize;
    }
};

TEST_F(SavedMeasurement, ThePageLearnsTheHomeAndTheBytesOfASavedAnalysis) {
    open();
    load();
    EXPECT_EQ(lastArgument(*page, "onHome"), machine.platform.layout.home);
    EXPECT_TRUE(sizes("files").is_null()) << "no file is looked at while the window opens";
    EXPECT_EQ(machine.dispatcher.waitingGlobal(), 1u) << "nor are the folders read";
    machine.dispatcher.runAll();
    EXPECT_EQ(sizes("files"), (json{{film, allocated(film)}, {archive, allocated(archive)}}));
    EXPECT_EQ(sizes("copies"), (json{{copy1, 4}, {copy2, 4}, {copy3, 4}}));
    EXPECT_EQ(count("onMeasurement"), 0u) << "none was saved";
}

TEST_F(SavedMeasurement, NamesOfOneFileAreToldApartFromCopies) {
    std::filesystem::remove(copy2);
    std::filesystem::create_hard_link(copy1, copy2);
    openWindow();
    load();
    EXPECT_EQ(lastArgument(*page, "onLinkedCopies"),
              (json{{"hash", json::array({json::array({copy1, copy2})})}}));
}

TEST_F(SavedMeasurement, AFileInTheTrashHasItsBytesToo) {
    const std::int64_t bytes = allocated(film);
    remove({film});
    ASSERT_THAT(trash.items(), SizeIs(1));
    EXPECT_EQ(trash.items()[0].gb, 1.2) << "as the list had it";
    EXPECT_EQ(sizes("trash"), (json{{trash.items()[0].id, bytes}}));
}

TEST_F(SavedMeasurement, TheBytesOfTheTrashAreToldOnceAndToAPageThatLoadsAgain) {
    remove({film});
    EXPECT_EQ(count("onExactSizes"), 1u);
    remove({archive});
    EXPECT_EQ(sizes("trash").size(), 2u);
    page->scripts.clear();
    ask("restoreItem", trash.items()[0].id);
    EXPECT_EQ(count("onExactSizes"), 0u) << "nothing is new";
    load();
    EXPECT_EQ(sizes("trash").size(), 1u);
}

TEST_F(SavedMeasurement, AFolderThatWasMeasuredBeforeTheMoveHasItsBytes) {
    const std::string folder = machine.home.path("project");
    machine.home.text("project/notes.txt", std::string(1234, 'x'));
    remove({folder});
    EXPECT_EQ(sizes("trash"), (json{{trash.items()[0].id, 1234}}));
}

TEST_F(SavedMeasurement, ACandidateHasItsBytesBeforeItIsProposed) {
    machine.home.file("Library/Caches/com.example.App/data", 60_MB);
    ask("scanCleanables");
    const auto found = lastArgument(*page, "onCleanables");
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(sizes("cleanables")[found[0]["path"].get<std::string>()],
              std::llround(found[0]["gb"].get<double>() * 1e9));
}

/// A home with pairs of equal files, for which the analysis has no time: the clock jumps.
struct Comparison : TrashFixture {
    void SetUp() override {
        slow = true;
        for (const char* name : {"a/one", "b/one", "a/two", "b/two"}) {
            const std::string content(1'100'000, std::string(name).ends_with("one") ? '1' : '2');
            machine.home.text(std::string("Music/") + name, content);
        }
        auto clock = std::make_unique<SlowClock>(std::move(machine.platform.clock));
        machine.platform.contents = std::make_unique<SlowContents>(*clock);
        machine.platform.clock = std::move(clock);
        open();
        load();
        machine.dispatcher.runAll();
        slow = false;
    }

    /// A clock that reading moves on, from whatever thread.
    struct SlowClock final : Clock {
        explicit SlowClock(std::unique_ptr<Clock> clock) : real(std::move(clock)) {}
        double now() const override { return real->now() + static_cast<double>(more); }
        double monotonic() const override { return real->monotonic() + static_cast<double>(more); }
        std::unique_ptr<Clock> real;
        std::atomic<std::int64_t> more{0};  // seconds
    };

    /// Whole files take a minute each while `slow`.
    struct SlowContents final : FileContentReader {
        explicit SlowContents(SlowClock& of) : clock(of) {}
        std::unique_ptr<FileContent> open(const std::string& path) override {
            auto content = real->open(path);
            return content ? std::make_unique<Content>(*this, std::move(content)) : nullptr;
        }
        struct Content final : FileContent {
            Content(SlowContents& of, std::unique_ptr<FileContent> content)
                : owner(of), real(std::move(content)) {}
            std::int64_t size() const override { return real->size(); }
            std::ptrdiff_t read(std::int64_t offset, std::span<std::byte> buffer) override {
                if (slow && offset > 0) owner.clock.more += 60;
                return real->read(offset, buffer);
            }
            SlowContents& owner;
            std::unique_ptr<FileContent> real;
        };
        SlowClock& clock;
        std::unique_ptr<FileContentReader> real = makeFileContentReader();
    };
    static inline bool slow = true;

    json compared() const { return lastArgument(*page, "onMeasurement")["compared"]; }
    std::vector<std::string> groups() const {
        std::vector<std::string> names;
        const json state = shown();
        for (const json& group : state["dupGroups"])
            names.push_back(group["name"]);
        return names;
    }
};

TEST_F(Comparison, WhatTheAnalysisHadNoTimeForIsCounted) {
    EXPECT_THAT(groups(), IsEmpty());
    EXPECT_EQ(compared(),
              (json{{"complete", false}, {"left", 4}, {"canContinue", true}, {"running", false}}));
}

TEST_F(Comparison, ItGoesOnWithoutALimitAndBringsTheGroups) {
    slow = true;
    post("continueComparison");
    EXPECT_EQ(compared()["running"], true);
    machine.dispatcher.runAll();
    EXPECT_THAT(groups(), ElementsAre("one", "two"));
    EXPECT_EQ(compared(),
              (json{{"complete", true}, {"left", 0}, {"canContinue", false}, {"running", false}}));
    EXPECT_EQ(savedState()["state"]["dupGroups"].size(), 2u);
    EXPECT_EQ(bridge->bootState->state.dupGroups.size(), 2u);
}

TEST_F(Comparison, ItStopsWhenAskedToAndKnowsWhereItStood) {
    post("continueComparison");
    post("stopComparison");
    machine.dispatcher.runAll();
    EXPECT_THAT(groups(), IsEmpty());
    EXPECT_EQ(compared()["left"], 4);
    EXPECT_EQ(compared()["running"], false);
    ask("continueComparison");
    EXPECT_EQ(compared()["left"], 0);
}

TEST_F(Comparison, AFileThatHasLeftMeanwhileIsInNoGroup) {
    post("continueComparison");
    machine.dispatcher.runGlobal();
    remove({machine.home.path("Music/a/one")});
    machine.dispatcher.runAll();
    EXPECT_THAT(groups(), ElementsAre("two"));
}

TEST_F(Comparison, ANewAnalysisTakesItsPlace) {
    post("continueComparison");
    post("scan");
    machine.dispatcher.runAll();
    EXPECT_THAT(groups(), SizeIs(2)) << "each once";
    EXPECT_EQ(compared()["complete"], true);
    EXPECT_EQ(compared()["running"], false);
}

TEST_F(Comparison, TheNextStartKnowsWhatWasNotComparedAndCannotGoOn) {
    const json before = lastArgument(*page, "onMeasurement");
    openWindow();
    load();
    json now = lastArgument(*page, "onMeasurement");
    EXPECT_EQ(now["compared"]["left"], 4);
    EXPECT_EQ(now["compared"]["canContinue"], false);
    now["compared"] = before["compared"];
    EXPECT_EQ(now, before);
    ask("continueComparison");
    EXPECT_EQ(compared()["running"], false);
}

TEST_F(Comparison, OneThatEndsDuringAResetLeavesNothingBehind) {
    post("continueComparison");
    post("resetVelto");
    machine.dispatcher.runGlobal();  // the comparison has ended and all data is gone
    machine.dispatcher.runAll();     // what the page's side makes of both
    EXPECT_FALSE(machine.home.exists("Library/Application Support/Velto"));
    EXPECT_FALSE(bridge->bootState);
}

TEST_F(Comparison, AResetForgetsIt) {
    ask("resetVelto");
    page->scripts.clear();
    ask("continueComparison");
    EXPECT_EQ(count("onMeasurement"), 0u);
    EXPECT_FALSE(machine.home.exists(dataFolder + "/measurement.json"));
}

}  // namespace
}  // namespace velto
