#include "uninstall/AppUsage.h"

#include <gmock/gmock.h>

#include <string>
#include <thread>

#include <nlohmann/json.hpp>

#include "support/TestPlatform.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class AppUsageTest : public testing::Test {
protected:
    std::string file() const { return "Library/Application Support/Velto/app-usage.json"; }
    RunningApplication running(const std::string& path, const std::string& identifier) {
        return {.bundleIdentifier = identifier, .bundlePath = path};
    }

    /// Lets the moment pass after which uses are saved.
    void save() {
        machine.dispatcher.advance(60);
        machine.dispatcher.runAll();
    }

    TestPlatform machine;
};

TEST_F(AppUsageTest, AUseIsKeptAcrossStarts) {
    AppUsage usage(machine.platform);
    usage.record("com.example.foo", 1000.5);
    save();
    EXPECT_THAT(AppUsage(machine.platform).launches(),
                ElementsAre(Pair("com.example.foo", 1000.5)));
    EXPECT_EQ(nlohmann::json::parse(machine.home.read(file())),
              nlohmann::json({{"com.example.foo", 1000.5}}));
}

TEST_F(AppUsageTest, AnOlderTimeNeverReplacesANewerOne) {
    AppUsage usage(machine.platform);
    usage.record("com.example.foo", 2000);
    usage.record("com.example.foo", 1000);
    EXPECT_THAT(usage.launches(), ElementsAre(Pair("com.example.foo", 2000)));
    usage.record("com.example.foo", 3000);
    EXPECT_THAT(usage.launches(), ElementsAre(Pair("com.example.foo", 3000)));
}

TEST_F(AppUsageTest, WhatIsNoUseIsNotRecorded) {
    AppUsage usage(machine.platform);
    usage.record("", 1000);
    usage.record("app.velto", 1000);
    usage.record("com.example.foo", 0);
    usage.record("com.example.foo", -1);
    usage.record("com.example.foo", std::numeric_limits<double>::quiet_NaN());
    EXPECT_THAT(usage.launches(), IsEmpty());
    save();
    EXPECT_FALSE(machine.home.exists(file()));
}

TEST_F(AppUsageTest, ADamagedFileCountsAsEmptyAndIsReplaced) {
    for (const char* content : {"", "{", "[1]", "\xFF\xFF"}) {
        machine.home.text(file(), content);
        AppUsage usage(machine.platform);
        EXPECT_THAT(usage.launches(), IsEmpty());
        usage.record("com.example.foo", 1000);
        save();
        EXPECT_THAT(AppUsage(machine.platform).launches(), testing::SizeIs(1));
    }
    machine.home.text(file(), R"({"a": 5, "b": "text", "c": 7.5})");
    EXPECT_THAT(AppUsage(machine.platform).launches(), ElementsAre(Pair("a", 5), Pair("c", 7.5)));
}

TEST_F(AppUsageTest, WhatRunsAtTheStartWasUsedThen) {
    machine.running.add(running("/Applications/Foo.app", "com.example.foo"));
    machine.running.add(running("/Applications/Nameless.app", ""));
    machine.running.add(running("/tmp/Bar.app", "com.example.bar"));
    machine.running.add(running("/Applications/Velto.app", "app.velto"));
    AppUsage usage(machine.platform);
    usage.start();
    EXPECT_THAT(usage.launches(), ElementsAre(Pair("com.example.foo", machine.clock.time)));
}

TEST_F(AppUsageTest, ActivatingAnInstalledApplicationUpdatesItsTime) {
    AppUsage usage(machine.platform);
    usage.start();
    const auto use = [&](const std::string& path, const std::string& identifier) {
        machine.clock.time += 10;
        machine.running.onUse(running(path, identifier));
        return machine.clock.time;
    };
    use("/Applications/Foo.app", "com.example.foo");
    const double later = use("/Applications/Foo.app", "com.example.foo");
    const double user = use(machine.home.path("Applications/Bar.app"), "com.example.bar");
    use(machine.home.path("Downloads/Elsewhere.app"), "com.example.elsewhere");
    use("/ApplicationsOther/Baz.app", "com.example.baz");
    EXPECT_THAT(usage.launches(),
                ElementsAre(Pair("com.example.bar", user), Pair("com.example.foo", later)));
}

TEST_F(AppUsageTest, StartingTwiceObservesOnce) {
    AppUsage usage(machine.platform);
    EXPECT_FALSE(usage.observing);
    usage.start();
    usage.start();
    EXPECT_TRUE(usage.observing);
    EXPECT_EQ(machine.running.observers, 1);
}

TEST_F(AppUsageTest, WhatWasForgottenIsNotWrittenBackByTheNextUse) {
    AppUsage usage(machine.platform);
    usage.record("com.example.old", 1000);
    usage.forget();
    EXPECT_THAT(usage.launches(), IsEmpty());
    machine.platform.files->removeAll(machine.platform.layout.dataFolder);
    save();
    EXPECT_FALSE(machine.home.exists(file())) << "the save that was on its way has nothing to say";
    usage.record("com.example.new", 2000);
    save();
    EXPECT_THAT(AppUsage(machine.platform).launches(), ElementsAre(Pair("com.example.new", 2000)));
}

TEST_F(AppUsageTest, SwitchedOffItForgetsRemovesItsFileAndRecordsNothingMore) {
    {
        AppUsage usage(machine.platform);
        usage.record("com.example.old", 1000);
        save();
        usage.record("com.example.recent", 2000);  // its save is on its way
        usage.setRecording(false);
        usage.record("com.example.new", 3000);
        EXPECT_THAT(usage.launches(), IsEmpty());
        save();
        usage.save();
    }
    EXPECT_FALSE(machine.home.exists(file()));
    AppUsage later(machine.platform);
    EXPECT_FALSE(later.isRecording()) << "the next start has forgotten the switch";
    later.record("com.example.new", 4000);
    later.save();
    EXPECT_FALSE(machine.home.exists(file()));
}

TEST_F(AppUsageTest, SwitchedOnAgainItBeginsWithNothing) {
    AppUsage usage(machine.platform);
    EXPECT_TRUE(usage.isRecording());
    usage.record("com.example.old", 1000);
    usage.setRecording(false);
    usage.setRecording(true);
    usage.record("com.example.new", 2000);
    save();
    EXPECT_THAT(AppUsage(machine.platform).launches(), ElementsAre(Pair("com.example.new", 2000)));
}

TEST_F(AppUsageTest, AFileThatCouldNotBeRemovedIsNotReadWhileItIsOff) {
    machine.defaults.setValue(defaultsKey::recordUses, false);
    machine.home.text(file(), R"({"com.example.old": 1000})");
    EXPECT_THAT(AppUsage(machine.platform).launches(), IsEmpty());
}

TEST_F(AppUsageTest, ASwitchThatIsNoSwitchLeavesItOn) {
    machine.defaults.setValue(defaultsKey::recordUses, std::string("no"));
    EXPECT_TRUE(AppUsage(machine.platform).isRecording());
}

TEST_F(AppUsageTest, UsesThatComeTogetherAreWrittenOnceAndNotOnTheMainThread) {
    int written = 0;
    AppUsage usage(machine.platform, [&](const std::string&, std::string_view) { ++written; });
    for (int number = 1; number <= 20; ++number) {
        machine.running.add(running("/Applications/" + std::to_string(number) + ".app",
                                    "com.example." + std::to_string(number)));
    }
    usage.start();
    machine.running.onUse(running("/Applications/Foo.app", "com.example.foo"));
    EXPECT_EQ(machine.dispatcher.waitingTimers(), 1u);
    machine.dispatcher.advance(60);
    machine.dispatcher.runMain();
    EXPECT_EQ(written, 0);
    EXPECT_EQ(machine.dispatcher.changes, 1) << "the end of the program waits for it";
    machine.dispatcher.runGlobal();
    EXPECT_EQ(written, 1);
    usage.save();
    EXPECT_EQ(written, 1) << "nothing is new";
    usage.record("com.example.foo", machine.clock.time + 1);
    save();
    EXPECT_EQ(written, 2);
}

TEST_F(AppUsageTest, UsesNotedOnTwoThreadsAreAllKept) {
    AppUsage usage(machine.platform);
    const auto note = [&](const char* name) {
        for (int number = 1; number <= 50; ++number)
            usage.record(name + std::to_string(number % 10), number);
    };
    std::thread other(note, "other");
    note("own");
    other.join();
    save();
    EXPECT_EQ(usage.launches().size(), 20u);
    EXPECT_EQ(usage.launches().at("other0"), 50);
    EXPECT_EQ(usage.launches().at("own9"), 49);
    EXPECT_EQ(AppUsage(machine.platform).launches(), usage.launches());
}

}  // namespace
}  // namespace velto
