#include "bridge/QuitIntents.h"

#include "BridgeFixture.h"

namespace velto {
namespace {

/// A page that has been shown a sample with an editor of the user's own.
struct QuitIntentsTest : BridgeFixture {
    static constexpr std::int32_t editor = 500;
    FakeRunningApplications::Process* process = nullptr;

    QuitIntentsTest() {
        open();
        machine.platform.activity.set(true);
        machine.processes.apps[editor] = {
            .name = "Editor", .bundle = "org.example.editor", .path = "", .isForPeople = true};
        auto& entry = machine.processes.add(editor, 1, "editor", 64);
        entry.info.isOwn = true;
        entry.info.start = 4711;
        process = &machine.running.add({.process = editor, .executable = "/usr/bin/editor"});
        machine.processes.add(90, 1, "daemon", 10).info.isOwn = true;
        post("systemWatch", {{"on", true}});
        sample(0.4);
    }
    void sample(double seconds) {
        machine.queue->advance(seconds);
        machine.dispatcher.runMain();
    }
    void ask(const char* intent, const nlohmann::json& payload = {{"pid", editor}}) {
        post(intent, payload);
        machine.dispatcher.runAll();
    }
    std::string lastToast() const {
        const auto all = page->calls("toast");
        return all.empty() ? "" : all.back();
    }
    std::string lastAnswer() const {
        const auto all = page->calls("onApplicationStopped");
        return all.empty() ? "" : all.back();
    }
    static constexpr const char* ended = R"({"ended":true,"pid":500})";
    static constexpr const char* open_ = R"({"ended":false,"pid":500})";
};

TEST_F(QuitIntentsTest, ThePageIsToldBesideEachSampleWhatCanBeQuit) {
    const auto told = page->calls("onSystemActivity");
    ASSERT_EQ(told.size(), 1u);
    EXPECT_NE(told[0].find(R"({"pid":500,"canQuit":true})"), std::string::npos) << told[0];
    EXPECT_NE(told[0].find(R"({"pid":90})"), std::string::npos) << told[0];
    sample(2);
    EXPECT_EQ(count("onSystemActivity"), 2u);
}

TEST_F(QuitIntentsTest, AnApplicationThatQuitsWhenAskedIsToldOf) {
    ask("quitApplication");
    EXPECT_EQ(process->asked, 1);
    EXPECT_EQ(process->forced, 0);
    EXPECT_NE(lastAnswer().find(ended), std::string::npos) << lastAnswer();
    EXPECT_EQ(count("toast"), 0u);
}

TEST_F(QuitIntentsTest, OneThatStaysOpenIsLeftAloneAndTheUserHearsWhy) {
    process->ignoresTerminate = true;
    ask("quitApplication");
    EXPECT_EQ(process->asked, 1);
    EXPECT_EQ(process->forced, 0);
    EXPECT_NE(lastAnswer().find(open_), std::string::npos) << lastAnswer();
    EXPECT_NE(lastToast().find("“Editor” is still open. It may be waiting"), std::string::npos)
        << lastToast();
    post("settings", {{"language", "es"}});
    ask("quitApplication");
    EXPECT_NE(lastToast().find("«Editor» sigue abierta."), std::string::npos) << lastToast();
}

TEST_F(QuitIntentsTest, EndingIsAnIntentOfItsOwn) {
    process->ignoresTerminate = true;
    ask("endApplication");
    EXPECT_EQ(process->asked, 0);
    EXPECT_EQ(process->forced, 1);
    EXPECT_NE(lastAnswer().find(ended), std::string::npos) << lastAnswer();
    EXPECT_EQ(count("toast"), 0u);
}

TEST_F(QuitIntentsTest, AnotherProcessThatHasTheNumberByNowIsNotTouched) {
    machine.processes.processes[editor].info.start = 4712;
    ask("quitApplication");
    ask("endApplication");
    EXPECT_EQ(process->asked + process->forced, 0);
    EXPECT_NE(lastAnswer().find(ended), std::string::npos) << "what was meant has ended";
}

TEST_F(QuitIntentsTest, WhatIsNoApplicationOfTheUsersIsNotTouchedWhateverThePageAsks) {
    auto& daemon = machine.running.add({.process = 90, .executable = "/usr/bin/daemon"});
    auto& itself = machine.running.add({.process = 77, .executable = "/usr/bin/velto"});
    for (const std::int32_t pid : {90, 77, 1, 0, -1}) {
        ask("quitApplication", {{"pid", pid}});
        ask("endApplication", {{"pid", pid}});
    }
    EXPECT_EQ(daemon.asked + daemon.forced + itself.asked + itself.forced, 0);
    EXPECT_EQ(count("onApplicationStopped"), 10u);
    EXPECT_NE(lastToast().find("It is no longer an application that can be quit from here."),
              std::string::npos)
        << lastToast();
    for (const nlohmann::json& payload :
         {nlohmann::json(editor), nlohmann::json::object(), nlohmann::json{{"pid", "500"}},
          nlohmann::json{{"pid", 500.5}}}) {
        ask("quitApplication", payload);
    }
    EXPECT_EQ(process->asked, 0);
}

TEST_F(QuitIntentsTest, AskedTwiceAtOnceItIsStoppedOnce) {
    process->ignoresTerminate = true;
    post("quitApplication", {{"pid", editor}});
    post("quitApplication", {{"pid", editor}});
    machine.dispatcher.runAll();
    EXPECT_EQ(process->asked, 1);
    EXPECT_EQ(count("onApplicationStopped"), 1u);
}

TEST_F(QuitIntentsTest, ABridgeThatIsGoneIsNotTold) {
    post("quitApplication", {{"pid", editor}});
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_EQ(process->asked, 1);
    EXPECT_EQ(count("onApplicationStopped"), 0u);
}

}  // namespace
}  // namespace velto
