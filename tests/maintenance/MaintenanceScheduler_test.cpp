#include "maintenance/MaintenanceScheduler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "maintenance/MaintenanceRecord.h"
#include "platform/values/PropertyList.h"
#include "support/TestPlatform.h"
#include "support/WatchedFiles.h"

namespace velto {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* agent = "Library/LaunchAgents/app.velto.maintenance.plist";

/// Answers a subcommand as the test says, and everything else well.
class AnsweringTools final : public ToolRunner {
public:
    ToolResult read(const std::string& path, const std::vector<std::string>& arguments) override {
        return run(path, arguments);
    }
    ToolResult run(const std::string&, const std::vector<std::string>& arguments) override {
        const auto found = answers.find(arguments.at(0));
        return found == answers.end() ? ToolResult{.started = true, .exitStatus = 0}
                                      : found->second;
    }

    std::map<std::string, ToolResult> answers;
};

ToolResult failed(const std::string& reason) {
    return {.started = true, .exitStatus = 5, .standardError = reason};
}

struct SchedulerTest : testing::Test {
    /// In the place of the tools that answer everything alike.
    AnsweringTools& tools() { return velto::install<AnsweringTools>(machine.platform.tools); }

    TestPlatform machine;
    MaintenanceScheduler scheduler{machine.platform};
};

TEST_F(SchedulerTest, TheAgentIsWrittenByteForByte) {
    scheduler.install("monthly");
    EXPECT_EQ(machine.home.read(agent),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
              "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
              "<plist version=\"1.0\">\n"
              "<dict>\n"
              "    <key>Label</key><string>app.velto.maintenance</string>\n"
              "    <key>ProgramArguments</key>\n"
              "    <array>\n"
              "        <string>/opt/velto/velto</string>\n"
              "        <string>--maintenance</string>\n"
              "    </array>\n"
              "    <key>StartInterval</key>\n"
              "    <integer>2592000</integer>\n"
              "    <key>RunAtLoad</key>\n"
              "    <false/>\n"
              "</dict>\n"
              "</plist>");
}

TEST_F(SchedulerTest, TheAgentReadsBackAsAPropertyList) {
    scheduler.install("weekends");
    const auto list = readPropertyList(machine.home.read(agent));
    ASSERT_TRUE(list);
    ASSERT_NE(list->text("Label"), nullptr);
    EXPECT_EQ(*list->text("Label"), "app.velto.maintenance");
    const auto& arguments = std::get<PropertyList::List>(list->member("ProgramArguments")->value);
    ASSERT_THAT(arguments, SizeIs(2));
    EXPECT_EQ(std::get<std::string>(arguments[0].value), "/opt/velto/velto");
    EXPECT_EQ(std::get<std::string>(arguments[1].value), "--maintenance");
    EXPECT_EQ(std::get<std::int64_t>(list->member("StartInterval")->value), 604800);
    EXPECT_FALSE(std::get<bool>(list->member("RunAtLoad")->value));
}

TEST_F(SchedulerTest, EachFrequencyHasItsInterval) {
    EXPECT_EQ(maintenanceInterval("daily"), 86400);
    EXPECT_EQ(maintenanceInterval("monthly"), 2592000);
    EXPECT_EQ(maintenanceInterval("weekends"), 604800);
    EXPECT_EQ(maintenanceInterval("never"), 604800);
}

TEST_F(SchedulerTest, InstallingTwiceUnloadsBeforeItLoads) {
    scheduler.install("daily");
    scheduler.install("daily");
    ASSERT_THAT(machine.tools.commands, SizeIs(4));
    EXPECT_EQ(machine.tools.commands[2].at(1), "unload");
    EXPECT_EQ(machine.tools.commands[3].at(1), "load");
}

TEST_F(SchedulerTest, AFailingUnloadIsNoFailure) {
    tools().answers["unload"] = failed("Unload failed: 5: Input/output error");
    EXPECT_NO_THROW(scheduler.install("daily"));
}

TEST_F(SchedulerTest, AnAgentThatTheSystemDoesNotLoadIsTold) {
    auto& asked = tools();
    asked.answers["load"] = failed("Load failed: 5: Input/output error");
    asked.answers["list"] = failed("Could not find service");
    EXPECT_THROW(scheduler.install("daily"), SchedulerError);
    EXPECT_FALSE(scheduler.isInstalled());
}

TEST_F(SchedulerTest, AComplaintAboutAnAgentThatIsLoadedIsLoggedAlone) {
    tools().answers["load"] = failed("Load failed: 5: Input/output error");
    EXPECT_NO_THROW(scheduler.install("daily"));
    EXPECT_TRUE(scheduler.isInstalled());
    ASSERT_THAT(machine.log.lines(), SizeIs(1));
    EXPECT_THAT(machine.log.lines()[0], testing::HasSubstr("Load failed: 5"));
}

TEST_F(SchedulerTest, AScheduleThatStandsIsLeftAlone) {
    scheduler.install("daily");
    machine.tools.commands.clear();
    scheduler.ensureInstalled("daily");
    EXPECT_THAT(machine.tools.commands, IsEmpty()) << "unloading would end a run";
    scheduler.ensureInstalled("monthly");
    EXPECT_THAT(machine.tools.commands, SizeIs(2)) << "another frequency";
    machine.platform.executablePath = "/Applications/Velto.app/Contents/MacOS/velto";
    scheduler.ensureInstalled("monthly");
    EXPECT_THAT(machine.tools.commands, SizeIs(4)) << "another place";
    machine.platform.files->removeAll(machine.platform.layout.agentFile);
    scheduler.ensureInstalled("monthly");
    EXPECT_THAT(machine.tools.commands, SizeIs(6)) << "somebody has taken it away";
    EXPECT_TRUE(scheduler.isInstalled());
}

TEST_F(SchedulerTest, AProgramThatWillNotStayIsNotScheduled) {
    machine.platform.executablePath =
        "/private/var/folders/x/AppTranslocation/0F8F/d/Velto.app/Contents/MacOS/velto";
    try {
        scheduler.install("daily");
        FAIL() << "installed";
    } catch (const SchedulerError& error) {
        EXPECT_EQ(error.reason(), SchedulerError::Reason::passingPlace);
    }
    EXPECT_FALSE(scheduler.isInstalled());
    EXPECT_THAT(machine.tools.commands, IsEmpty());
}

TEST_F(SchedulerTest, AnAgentThatCannotBeUnloadedGoesAllTheSameAndIsLogged) {
    scheduler.install("daily");
    tools().answers["unload"] = failed("Unload failed: 5: Input/output error");
    scheduler.remove();
    EXPECT_FALSE(scheduler.isInstalled());
    EXPECT_TRUE(
        machine.log.holds("Velto ▶ launchctl unload: Unload failed: 5: Input/output error"));
}

/// What is done at the start of the window.
struct KeepGoing : SchedulerTest {
    static constexpr double day = 86400;

    /// An agent that was written, and has run last, that many days ago.
    void agentOf(const std::string& program, double writtenDaysAgo,
                 std::optional<double> ranDaysAgo) {
        machine.home.text(agent, launchAgentText(program, "weekends"))
            .lastUsed(writtenDaysAgo * day);
        machine.clock.time = SystemClock().now();
        if (!ranDaysAgo) return;
        rememberMaintenance(*machine.platform.files, machine.platform.layout,
                            {.ts = machine.clock.time - *ranDaysAgo * day});
    }
    std::vector<std::string> asked() const {
        std::vector<std::string> subcommands;
        for (const auto& command : machine.tools.commands)
            subcommands.push_back(command.at(1));
        return subcommands;
    }
    static constexpr const char* own = "/opt/velto/velto";
};

TEST_F(KeepGoing, NothingInstalledStaysSo) {
    scheduler.keepGoing("weekends");
    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_FALSE(scheduler.isInstalled());
}

TEST_F(KeepGoing, ARunThatIsOverdueIsMadeUpFor) {
    machine.platform.userIdentifier = 501;
    agentOf(own, 40, 8);
    scheduler.keepGoing("weekends");
    ASSERT_THAT(machine.tools.commands, SizeIs(1));
    EXPECT_EQ(
        machine.tools.commands[0],
        (std::vector<std::string>{"/bin/launchctl", "kickstart", "gui/501/app.velto.maintenance"}));
}

TEST_F(KeepGoing, ARunThatNeverCameIsMadeUpFor) {
    agentOf(own, 8, std::nullopt);
    scheduler.keepGoing("weekends");
    EXPECT_THAT(asked(), testing::ElementsAre("kickstart"));
}

TEST_F(KeepGoing, WhatIsNotDueYetIsNotStarted) {
    agentOf(own, 40, 6);
    scheduler.keepGoing("weekends");
    agentOf(own, 6, std::nullopt);
    scheduler.keepGoing("weekends");
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(KeepGoing, TheAgentOfAnApplicationThatWasMovedFindsItAgain) {
    agentOf("/Users/ana/Downloads/Velto.app/Contents/MacOS/velto", 40, 1);
    scheduler.keepGoing("weekends");
    EXPECT_EQ(machine.home.read(agent), launchAgentText(own, "weekends"));
    EXPECT_THAT(asked(), testing::ElementsAre("unload", "load"));
}

TEST_F(KeepGoing, AMovedApplicationStillMakesUpForItsRun) {
    agentOf("/Users/ana/Downloads/Velto.app/Contents/MacOS/velto", 40, 8);
    scheduler.keepGoing("weekends");
    EXPECT_THAT(asked(), testing::ElementsAre("unload", "load", "kickstart"));
}

TEST_F(KeepGoing, AProgramThatWillNotStayTakesNoAgentOver) {
    const std::string old = "/Applications/Velto.app/Contents/MacOS/velto";
    agentOf(old, 1, 1);
    machine.platform.executablePath = "/private/var/AppTranslocation/0F/d/Velto.app/velto";
    scheduler.keepGoing("weekends");
    EXPECT_EQ(machine.home.read(agent), launchAgentText(old, "weekends"));
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(KeepGoing, AFailureIsLoggedAndNoMore) {
    agentOf("/old/velto", 1, 1);
    machine.tools.result = {.started = false, .startError = "No such file or directory"};
    EXPECT_NO_THROW(scheduler.keepGoing("weekends"));
    EXPECT_THAT(machine.log.lines().back(), testing::HasSubstr("No such file or directory"));
    EXPECT_EQ(machine.home.read(agent), launchAgentText("/old/velto", "weekends"));
}

TEST_F(SchedulerTest, AMissingToolOrAnUnwritableFolderIsTold) {
    machine.tools.result = {.started = false, .startError = "No such file or directory"};
    EXPECT_THROW(scheduler.install("daily"), SchedulerError);
    machine.home.text("Library/LaunchAgents2", "");
    machine.platform.layout.agentsFolder = machine.home.path("Library/LaunchAgents2/x");
    EXPECT_THROW(scheduler.install("daily"), FileError);
}

TEST_F(SchedulerTest, AFailedRefreshLeavesTheAgentThatWorked) {
    scheduler.install("daily");
    machine.platform.executablePath = "/opt/elsewhere/velto";
    machine.tools.result = {.started = false, .startError = "No such file or directory"};
    machine.tools.commands.clear();
    EXPECT_THROW(scheduler.install("monthly"), SchedulerError);
    EXPECT_TRUE(scheduler.isInstalled());
    EXPECT_EQ(machine.home.read(agent), launchAgentText("/opt/velto/velto", "daily"));
    ASSERT_THAT(machine.tools.commands, SizeIs(3));
    EXPECT_EQ(machine.tools.commands[2].at(1), "load") << "it was unloaded meanwhile";
}

TEST_F(SchedulerTest, AnAgentThatCannotBeReplacedStaysAsItIs) {
    scheduler.install("daily");
    auto watched = std::make_unique<WatchedFiles>(std::move(machine.platform.files));
    watched->unwritable.insert(machine.platform.layout.agentFile);
    machine.platform.files = std::move(watched);
    EXPECT_THROW(scheduler.install("monthly"), FileError);
    EXPECT_EQ(machine.home.read(agent), launchAgentText("/opt/velto/velto", "daily"));
}

TEST_F(SchedulerTest, RemovingTakesTheFileAwayAndNothingInstalledIsFine) {
    scheduler.remove();
    EXPECT_THAT(machine.tools.commands, IsEmpty());
    scheduler.install("daily");
    EXPECT_TRUE(scheduler.isInstalled());
    scheduler.remove();
    EXPECT_FALSE(scheduler.isInstalled());
    EXPECT_FALSE(machine.home.exists(agent));
    EXPECT_EQ(machine.tools.commands.back().at(1), "unload");
}

}  // namespace
}  // namespace velto
