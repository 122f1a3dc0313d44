#include "BridgeFixture.h"

namespace velto {
namespace {

/// A page on a machine whose sampling queue is in the test's hands.
struct SystemIntents : BridgeFixture {
    SystemIntents() {
        open();
        machine.platform.activity.set(true);
    }
    std::vector<std::string> samples(double seconds) {
        const std::size_t before = page->calls("onSystem").size();
        machine.queue->advance(seconds);
        machine.dispatcher.runMain();
        const auto all = page->calls("onSystem");
        return {all.begin() + static_cast<std::ptrdiff_t>(before), all.end()};
    }
};

TEST_F(SystemIntents, NothingIsSampledBeforeThePageAsks) {
    EXPECT_TRUE(samples(60).empty());
    EXPECT_TRUE(machine.queue->timers.empty());
}

TEST_F(SystemIntents, ThePageGetsSamplesWhileItWantsThemAndNoneAfter) {
    machine.processes.add(100, 1, "worker", 64);
    post("systemWatch", {{"on", true}});
    const auto first = samples(0.4);
    ASSERT_EQ(first.size(), 1u);
    EXPECT_NE(first[0].find(R"("battery":{"avail":false})"), std::string::npos) << first[0];
    EXPECT_NE(first[0].find(R"("name":"worker","pid":100)"), std::string::npos) << first[0];
    EXPECT_EQ(samples(6).size(), 3u);
    post("systemWatch", {{"on", false}});
    EXPECT_TRUE(samples(60).empty());
    EXPECT_TRUE(machine.queue->timers.empty());
}

TEST_F(SystemIntents, WhatGoesBeyondASampleComesWithIt) {
    machine.processes.add(100, 1, "na\xc3", 64);
    machine.processes.add(101, 1, "na\xc3", 64);
    post("systemWatch", {{"on", true}});
    samples(0.4);
    const auto details = page->calls("onSystemDetails");
    ASSERT_EQ(details.size(), 1u);
    EXPECT_NE(details[0].find("\"name\":\"na\xEF\xBF\xBD\",\"pid\":100"), std::string::npos)
        << details[0];
    EXPECT_NE(details[0].find(R"("unseen":["temperature"])"), std::string::npos) << details[0];
}

TEST_F(SystemIntents, WithoutAPayloadOrWithOneThatMeansNothingSamplingStops) {
    for (const nlohmann::json& payload : {nlohmann::json("on"), nlohmann::json::object(),
                                          nlohmann::json{{"on", "yes"}}, nlohmann::json(true)}) {
        post("systemWatch", {{"on", 1}});
        EXPECT_EQ(samples(0.4).size(), 1u);
        post("systemWatch", payload);
        EXPECT_TRUE(samples(60).empty());
    }
    post("systemWatch", {{"on", true}});
    post("systemWatch");
    EXPECT_TRUE(samples(60).empty());
}

TEST_F(SystemIntents, ClosingTheWindowWaitsForNoSampleThatHangs) {
    post("systemWatch", {{"on", true}});
    samples(0.4);
    machine.dispatcher.runAll();
    bridge.reset();
    EXPECT_FALSE(machine.queue->timers.empty()) << "the queue went on the main thread";
    machine.platform.activity.set(false);  // which the monitor no longer hears
    machine.dispatcher.runAll();
    EXPECT_TRUE(machine.queue->timers.empty());
}

TEST_F(SystemIntents, NothingIsSampledForAWindowInTheBackground) {
    post("systemWatch", {{"on", true}});
    EXPECT_EQ(samples(2.4).size(), 2u);
    machine.platform.activity.set(false);
    EXPECT_TRUE(samples(60).empty());
    machine.platform.activity.set(true);
    EXPECT_EQ(samples(0.4).size(), 1u);
}

TEST_F(SystemIntents, ANameThatIsNotUtf8ReachesThePage) {
    machine.processes.add(100, 1, "na\xc3");
    post("systemWatch", {{"on", true}});
    const auto sample = samples(0.4);
    ASSERT_EQ(sample.size(), 1u);
    EXPECT_NE(sample[0].find("na\xEF\xBF\xBD"), std::string::npos);
}

TEST_F(SystemIntents, ASampleForABridgeThatIsGoneGoesNowhere) {
    post("systemWatch", {{"on", true}});
    machine.queue->advance(0.4);
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_TRUE(page->calls("onSystem").empty());
    EXPECT_TRUE(machine.queue->timers.empty());
}

}  // namespace
}  // namespace velto
