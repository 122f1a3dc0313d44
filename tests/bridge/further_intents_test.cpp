#include "bridge/FurtherIntents.h"

#include <filesystem>

#include "bridge/BridgeFixture.h"
#include "bridge/further_events.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

struct FurtherIntentsTest : BridgeFixture {
    void SetUp() override {
        saveAnalysis(1'600'000'000);
        open();
        load();
        machine.dispatcher.runAll();
        page->scripts.clear();
    }

    void look() {
        post("scanFurther");
        machine.dispatcher.runAll();
    }
    json told(std::size_t event) const {
        const std::string script = page->calls("onFurtherCleanables").at(event);
        const std::size_t begin = script.rfind("onFurtherCleanables(") + 20;
        return json::parse(script.substr(begin, script.rfind(");") - begin));
    }
    json last() const { return told(count("onFurtherCleanables") - 1); }
    /// The places told last, below the home.
    std::vector<std::string> paths() const {
        std::vector<std::string> found;
        const json event = last();
        for (const json& group : event.at("groups")) {
            for (const json& item : group.at("items"))
                found.push_back(
                    item.at("path").get<std::string>().substr(machine.home.path().size() + 1));
        }
        return found;
    }
};

TEST_F(FurtherIntentsTest, WhatIsFoundComesWithTheRuleAsItIs) {
    machine.home.file(".npm/_cacache/x", 1'000'000);
    post("scanFurther");
    EXPECT_EQ(count("onFurtherCleanables"), 0u) << "not on the main thread";
    machine.dispatcher.runAll();
    const json event = last();
    EXPECT_EQ(event["asking"], false);
    json group;
    for (const json& one : event["groups"]) {
        if (one["rule"]["id"] == "npm") group = one;
    }
    ASSERT_EQ(group["items"].size(), 1u);
    EXPECT_EQ(group["rule"]["name"]["en"], "npm cache");
    EXPECT_EQ(group["rule"]["command"], "npm install");
    EXPECT_EQ(group["rule"]["where"], json({"~/.npm/_cacache"}));
    const json item = group["items"][0];
    EXPECT_EQ(item["path"], machine.home.path(".npm/_cacache"));
    EXPECT_GE(item["bytes"], 1'000'000);
    EXPECT_EQ(item["linked"], 0);
    EXPECT_EQ(item["days"], 0);
    EXPECT_EQ(item["certain"], true);
    EXPECT_EQ(item["reason"], "madeAgain");
    EXPECT_EQ(group["bytes"], nullptr);
}

TEST_F(FurtherIntentsTest, WhatTheListOfCleanablesHasIsNotListedTwice) {
    machine.home.sparse("Library/Caches/pip/http/x", 60'000'000);
    machine.home.file("Library/Caches/pip/http/y", 4096);
    machine.home.file(".npm/_cacache/x", 4096);
    look();
    EXPECT_THAT(paths(), ElementsAre(".npm/_cacache", "Library/Caches/pip"));
    post("scanCleanables");
    machine.dispatcher.runAll();
    ASSERT_EQ(count("onCleanables"), 1u);
    look();
    EXPECT_THAT(paths(), ElementsAre(".npm/_cacache"));
}

TEST_F(FurtherIntentsTest, WhatIsMovedGoesThroughTheTrashWithItsSizeAndComesBack) {
    machine.home.file(".npm/_cacache/x", 30'000'000);
    look();
    const std::string path = machine.home.path(".npm/_cacache");
    post("cleanPaths", {{"paths", json::array({path})}});
    machine.dispatcher.runAll();
    EXPECT_FALSE(machine.home.exists(".npm/_cacache"));
    ASSERT_EQ(trash.items().size(), 1u);
    EXPECT_EQ(trash.items()[0].originalPath, path);
    EXPECT_NEAR(trash.items()[0].gb, 0.03, 0.001);
    post("undoLast");
    machine.dispatcher.runAll();
    EXPECT_TRUE(machine.home.exists(".npm/_cacache/x"));
}

TEST_F(FurtherIntentsTest, WhatIsFoundHereIsNeverDeletedPastTheTrash) {
    machine.home.file(".npm/_cacache/x", 30'000'000);
    machine.volumes.available = 1'000'000;
    look();
    post("deleteNow", {{"paths", json::array({machine.home.path(".npm/_cacache")})}});
    machine.dispatcher.runAll();
    EXPECT_TRUE(machine.home.exists(".npm/_cacache/x"));
}

TEST_F(FurtherIntentsTest, WhatIsExcludedOrMovedMeanwhileIsNotOffered) {
    machine.home.file(".npm/_cacache/x", 4096);
    machine.home.file(".cargo/registry/cache/x", 4096);
    post("cleanPaths", {{"paths", json::array({machine.home.path(".npm/_cacache")})}});
    machine.dispatcher.runGlobal();
    post("scanFurther");
    machine.dispatcher.runMain();                // now the bridge knows that it has gone
    machine.home.file(".npm/_cacache/x", 4096);  // as it looked when it was found
    machine.dispatcher.runGlobal();
    exclusions.add(machine.home.path(".cargo"));
    machine.dispatcher.runAll();
    EXPECT_THAT(paths(), IsEmpty());
    EXPECT_TRUE(machine.home.exists(".cargo/registry/cache/x"));
}

TEST_F(FurtherIntentsTest, ASecondQuestionWhileItLooksIsTheSame) {
    machine.home.file(".npm/_cacache/x", 4096);
    post("scanFurther");
    post("scanFurther");
    machine.dispatcher.runAll();
    const std::size_t events = count("onFurtherCleanables");
    EXPECT_LE(events, 2u);
    look();
    EXPECT_GT(count("onFurtherCleanables"), events) << "afterwards it is a new one";
}

TEST_F(FurtherIntentsTest, AWindowThatIsClosedMeanwhileHearsNothing) {
    machine.home.file(".npm/_cacache/x", 4096);
    post("scanFurther");
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onFurtherCleanables"), 0u);
}

TEST(FurtherEvents, WhatIsExplainedComesWithItsPartsAndTheirCommands) {
    const FurtherRule* docker = &*std::ranges::find(furtherRules(), "docker", &FurtherRule::id);
    const FurtherGroup group{.rule = docker,
                             .items = {},
                             .bytes = 5,
                             .parts = {{"Images", 5, "docker image prune --all"}}};
    const std::string script = events::furtherCleanables({group}, true);
    EXPECT_THAT(script, testing::HasSubstr(R"("asking":true)"));
    EXPECT_THAT(script, testing::HasSubstr(R"("command":"docker image prune --all")"));
    EXPECT_THAT(script, testing::HasSubstr(R"("bytes":5)"));
}

TEST(FurtherEvents, AnythingThatOverlapsAProposalIsLeftOut) {
    const FurtherRule& npm = *std::ranges::find(furtherRules(), "npm", &FurtherRule::id);
    const FurtherRule& docker = *std::ranges::find(furtherRules(), "docker", &FurtherRule::id);
    const FurtherGroup group{
        .rule = &npm,
        .items = {{.path = "/h/a"}, {.path = "/h/b/c"}, {.path = "/h/d"}, {.path = "/h/ab"}},
        .bytes = {},
        .parts = {}};
    const FurtherGroup explained{.rule = &docker, .items = {}, .bytes = {}, .parts = {}};
    const FurtherGroup lost{.rule = &npm, .items = {{.path = "/h/a"}}, .bytes = {}, .parts = {}};
    const auto left = withoutProposed({group, explained, lost},
                                      {{.path = "/h/a"}, {.path = "/h/b"}, {.path = "/h/d/e"}});
    ASSERT_EQ(left.size(), 2u);
    ASSERT_EQ(left[0].items.size(), 1u);
    EXPECT_EQ(left[0].items[0].path, "/h/ab");
    EXPECT_EQ(left[1].rule, &docker);
}

}  // namespace
}  // namespace velto
