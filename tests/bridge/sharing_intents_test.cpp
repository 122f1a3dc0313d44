#include "bridge/TrashFixture.h"
#include "support/FakeBlockSharing.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

struct SharingIntents : TrashFixture {
    FakeBlockSharing* volume = nullptr;

    void SetUp() override {
        volume = &install<FakeBlockSharing>(machine.platform.sharing);
        TrashFixture::SetUp();
        // As files are that were compared: older than the analysis.
        for (const std::string& path : {copy1, copy2, copy3})
            TempHome::File(path).dated(1'500'000'000, 1'500'000'000);
    }

    json group(const std::string& kept) const {
        return {{"groups", json::array({{{"id", "hash"}, {"kept", kept}}})}};
    }
};

TEST_F(SharingIntents, WhatItWouldBringIsToldAndNothingIsTouched) {
    volume->refusals[copy2] = EXDEV;
    ask("foretellSharing", {{"request", 3}});
    const json answer = lastArgument(*page, "onSharable");
    EXPECT_EQ(answer, (json{{"request", 3},
                            {"groups",
                             {{"hash",
                               {{"kept", copy3},
                                {"copies",
                                 {{{"path", copy1}, {"bytes", 4}, {"exact", true}},
                                  {{"path", copy2},
                                   {"bytes", 0},
                                   {"exact", true},
                                   {"reason", "otherDisk"}}}}}}}}}));
    EXPECT_THAT(volume->asked, IsEmpty());
    EXPECT_EQ(count("setState"), 0u);
}

TEST_F(SharingIntents, TheCopiesShareAndTheHistoryTellsItFromARemoval) {
    ask("shareSpace", group(copy1));
    EXPECT_THAT(volume->asked, ElementsAre(std::pair(copy1, copy2), std::pair(copy1, copy3)));
    EXPECT_EQ(lastArgument(*page, "onShared"), (json{{"files", 2},
                                                     {"bytes", 8},
                                                     {"exact", true},
                                                     {"stopped", false},
                                                     {"stays", json::array()}}));
    const json entries = shown()["history"];
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0]["kind"], "share");
    EXPECT_EQ(entries[0]["items"].size(), 2u);
    // Everything is still there, in the list and on the disk, and in no trash.
    EXPECT_EQ(shown()["dupGroups"][0]["paths"], json({copy1, copy2, copy3}));
    EXPECT_EQ(machine.home.read("b/copy.bin"), "same");
    EXPECT_THAT(trash.items(), IsEmpty());
    // The last cleanup that can be undone is none of these.
    ask("undoLast");
    EXPECT_EQ(history.entries().size(), 1u);
}

TEST_F(SharingIntents, WhatIsNotListedIsNotTouched) {
    ask("shareSpace", {{"groups", json::array({{{"id", "other"}, {"kept", copy1}}})}});
    ask("shareSpace", group(film));
    ask("shareSpace", {{"groups", "hash"}});
    ask("shareSpace", {{"groups", json::array({"hash", 7, nullptr})}});
    ask("shareSpace", {{"paths", {copy1}}});
    ask("shareSpace", json::array({1}));
    ask("shareSpace");
    EXPECT_THAT(volume->asked, IsEmpty());
    EXPECT_EQ(count("onShared"), 0u);
    EXPECT_THAT(history.entries(), IsEmpty());
}

TEST_F(SharingIntents, WhatStaysIsToldWithItsReasonAndLeavesNoTraceInTheHistory) {
    volume->canShare = false;
    ask("shareSpace", group(copy1));
    const json answer = lastArgument(*page, "onShared");
    EXPECT_EQ(answer["files"], 0);
    EXPECT_EQ(answer["stays"][0]["reason"], "cannot");
    EXPECT_EQ(answer["stays"][1]["reason"], "cannot");
    EXPECT_THAT(history.entries(), IsEmpty());
}

TEST_F(SharingIntents, StoppingKeepsWhatSharesByThen) {
    volume->before = [&](const std::string& path) {
        if (path == copy3) post("stopSharing");
    };
    ask("shareSpace", group(copy1));
    const json answer = lastArgument(*page, "onShared");
    EXPECT_EQ(answer["files"], 1);
    EXPECT_EQ(answer["bytes"], 4);
    EXPECT_EQ(history.entries().size(), 1u);
    // Another one can be asked for afterwards.
    volume->before = nullptr;
    ask("shareSpace", group(copy1));
    EXPECT_EQ(lastArgument(*page, "onShared")["files"], 1);
}

TEST_F(SharingIntents, AChangedFileStaysAndNothingOfItIsLost) {
    machine.home.text("b/copy.bin", "else");
    ask("shareSpace", group(copy1));
    const json answer = lastArgument(*page, "onShared");
    EXPECT_EQ(answer["files"], 1);
    EXPECT_EQ(answer["stays"][0]["path"], copy2);
    EXPECT_EQ(answer["stays"][0]["reason"], "changed");
    EXPECT_EQ(machine.home.read("b/copy.bin"), "else");
}

}  // namespace
}  // namespace velto
