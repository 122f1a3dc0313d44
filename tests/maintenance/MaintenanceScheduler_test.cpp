#include "maintenance/MaintenanceScheduler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/values/PropertyList.h"
#include "support/TestPlatform.h"
#include "support/WatchedFiles.h"

namespace velto {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* agent = "Library/LaunchAgents/app.velto.maintenance.plist";

struct SchedulerTest : testing::Test {
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
    machine.tools.result.exitStatus = 113;
    EXPECT_NO_THROW(scheduler.install("daily"));
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
