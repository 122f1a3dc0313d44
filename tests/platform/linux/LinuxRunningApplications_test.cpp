#include "platform/linux/LinuxRunningApplications.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <optional>

#include "support/FakeDispatcher.h"
#include "support/TempHome.h"
#include "support/linux/Child.h"
#include "support/made_property_list.h"

namespace velto {
namespace {

class RunningTest : public testing::Test {
protected:
    std::string bundle() {
        home.text("Applications/Foo.app/Contents/Info.plist",
                  xmlPropertyList(textDictionary({{"CFBundleIdentifier", "com.example.foo"}})));
        return home.path("Applications/Foo.app");
    }
    std::optional<RunningApplication> find(std::int64_t process) {
        for (RunningApplication& application : running.list()) {
            if (application.process == process) return application;
        }
        return std::nullopt;
    }

    TempHome home;
    FakeDispatcher dispatcher;
    LinuxRunningApplications running{dispatcher};
};

TEST_F(RunningTest, AProgramInsideABundleIsThatApplication) {
    Child child(home, bundle() + "/Contents/MacOS/foo");
    const auto found = find(child.process());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->bundleIdentifier, "com.example.foo");
    EXPECT_EQ(found->bundlePath, home.path("Applications/Foo.app"));
    EXPECT_EQ(found->executable, home.path("Applications/Foo.app/Contents/MacOS/foo"));
}

TEST_F(RunningTest, AProgramWhoseFileIsGoneIsStillFound) {
    Child child(home, bundle() + "/Contents/MacOS/foo");
    ASSERT_EQ(unlink(home.path("Applications/Foo.app/Contents/MacOS/foo").c_str()), 0);
    ASSERT_TRUE(find(child.process()));
    EXPECT_EQ(find(child.process())->bundlePath, home.path("Applications/Foo.app"));
}

TEST_F(RunningTest, AskedToQuitItEndsAndIsSeenToHaveEnded) {
    Child child(home, bundle() + "/Contents/MacOS/foo");
    const auto control = running.control(*find(child.process()));
    ASSERT_TRUE(control);
    EXPECT_FALSE(control->isTerminated());
    control->terminate();
    EXPECT_EQ(child.wait(), SIGTERM);
    EXPECT_TRUE(control->isTerminated());
}

TEST_F(RunningTest, OneThatDoesNotListenIsEndedByForce) {
    Child child(home, bundle() + "/Contents/MacOS/foo", Child::Manner::ignoresTerm);
    const auto control = running.control(*find(child.process()));
    ASSERT_TRUE(control);
    control->terminate();
    EXPECT_FALSE(control->isTerminated());
    control->forceTerminate();
    EXPECT_EQ(child.wait(), SIGKILL);
    EXPECT_TRUE(control->isTerminated());
}

TEST_F(RunningTest, AnotherProgramUnderTheSameNumberIsLeftAlone) {
    Child child(home, bundle() + "/Contents/MacOS/foo");
    auto found = find(child.process());
    ASSERT_TRUE(found);
    found->executable = home.path("Applications/Bar.app/Contents/MacOS/bar");
    EXPECT_FALSE(running.control(*found));
}

TEST_F(RunningTest, WhatHasEndedCannotBeControlled) {
    Child child(home, bundle() + "/Contents/MacOS/foo");
    const auto found = find(child.process());
    child.end();
    EXPECT_FALSE(running.control(*found));
}

TEST_F(RunningTest, AnUnpackedAppImageCountsAsTheAppImage) {
    Child child(home, home.path("tmp/.mount_FooXYZ/usr/bin/foo"), Child::Manner::obedient,
                {"APPIMAGE=/home/ana/Applications/Foo.AppImage"});
    ASSERT_TRUE(find(child.process()));
    EXPECT_EQ(find(child.process())->executable, "/home/ana/Applications/Foo.AppImage");
}

TEST_F(RunningTest, AScriptIsSeenBehindTheProgramThatRunsIt) {
    const std::string script = home.text("apps/notes/notes", "#!/bin/sh\nread line\n").path();
    // The shell becomes the one that runs the script, which waits for the end of its input.
    FILE* const pipe = ::popen(("exec /bin/sh " + script).c_str(), "w");
    ASSERT_NE(pipe, nullptr);
    std::optional<RunningApplication> found;
    for (int tries = 0; tries < 5'000 && !found; ++tries) {
        for (RunningApplication& application : running.list()) {
            if (application.script == script) found = std::move(application);
        }
    }
    ASSERT_TRUE(found);
    EXPECT_TRUE(running.control(*found));
    ::pclose(pipe);
    EXPECT_FALSE(running.control(*found));
}

TEST_F(RunningTest, AStartAndAnEndAreNoticed) {
    std::vector<std::string> used;
    const std::string program = bundle() + "/Contents/MacOS/foo";
    running.observe([&](const RunningApplication& application) {
        if (application.executable == program) used.push_back(application.bundleIdentifier);
    });
    running.look();
    EXPECT_TRUE(used.empty());
    Child child(home, program);
    running.look();
    EXPECT_EQ(used.size(), 1u);
    running.look();
    EXPECT_EQ(used.size(), 1u);
    child.end();
    running.look();
    EXPECT_EQ(used, (std::vector<std::string>{"com.example.foo", "com.example.foo"}));
}

TEST_F(RunningTest, TheMachineIsLookedThroughEveryFiveSecondsAndNoMoreOften) {
    int used = 0;
    const std::string program = bundle() + "/Contents/MacOS/foo";
    running.observe([&](const RunningApplication& application) {
        used += application.executable == program ? 1 : 0;
    });
    Child child(home, program);
    dispatcher.advance(4.9);
    EXPECT_EQ(used, 0);
    EXPECT_EQ(dispatcher.waitingTimers(), 1u);
    dispatcher.advance(0.1);
    EXPECT_EQ(used, 1);
    EXPECT_EQ(dispatcher.waitingTimers(), 1u) << "looks add up";
    child.end();
    dispatcher.advance(4.9);
    EXPECT_EQ(used, 1);
    dispatcher.advance(0.2);
    EXPECT_EQ(used, 2);
}

}  // namespace
}  // namespace velto
