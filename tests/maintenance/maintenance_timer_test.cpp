// The schedule of a freedesktop home: units of the user's service manager.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "maintenance/MaintenanceScheduler.h"
#include "maintenance/systemd_units.h"
#include "support/TestPlatform.h"
#include "support/WatchedFiles.h"

namespace velto {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* timer = ".config/systemd/user/app.velto.maintenance.timer";
constexpr const char* service = ".config/systemd/user/app.velto.maintenance.service";
constexpr const char* wanted =
    ".config/systemd/user/timers.target.wants/app.velto.maintenance.timer";

/// Fails at one command.
class FailingTool final : public ToolRunner {
public:
    explicit FailingTool(std::string command) : command_(std::move(command)) {}

    ToolResult read(const std::string& path, const std::vector<std::string>& arguments) override {
        return run(path, arguments);
    }
    ToolResult run(const std::string&, const std::vector<std::string>& arguments) override {
        commands.push_back(arguments);
        if (onEnable && std::ranges::count(arguments, "enable") > 0) onEnable();
        const bool fails = std::ranges::find(arguments, command_) != arguments.end();
        return {.started = true,
                .startError = "",
                .exitStatus = fails ? 1 : 0,
                .standardError = fails ? "Failed to connect to bus:\nno medium found\n" : ""};
    }

    std::vector<std::vector<std::string>> commands;
    std::function<void()> onEnable;

private:
    std::string command_;
};

struct MaintenanceTimerTest : testing::Test {
    MaintenanceTimerTest() {
        machine.platform.layout = HomeLayout::freedesktop(
            machine.home.path(), [](const std::string&) { return std::nullopt; }, "");
    }

    FailingTool& failAt(const std::string& command) {
        auto tool = std::make_unique<FailingTool>(command);
        FailingTool& reference = *tool;
        machine.platform.tools = std::move(tool);
        return reference;
    }

    TestPlatform machine;
    MaintenanceScheduler scheduler{machine.platform};
};

TEST_F(MaintenanceTimerTest, InstallingWritesBothUnitsAndStartsTheTimer) {
    scheduler.install("daily");
    EXPECT_TRUE(scheduler.isInstalled());
    EXPECT_EQ(machine.home.read(timer), maintenanceTimerText("daily"));
    EXPECT_EQ(machine.home.read(service), maintenanceServiceText("/opt/velto/velto"));
    const char* const tool = "/usr/bin/systemctl";
    const char* const unit = "app.velto.maintenance.timer";
    EXPECT_THAT(machine.tools.commands, ElementsAre(ElementsAre(tool, "--user", "daemon-reload"),
                                                    ElementsAre(tool, "--user", "enable", unit),
                                                    ElementsAre(tool, "--user", "restart", unit)));
}

TEST_F(MaintenanceTimerTest, RemovingTakesEverythingAway) {
    scheduler.install("daily");
    machine.home.link(wanted, machine.home.path(timer));  // as enabling does
    machine.tools.commands.clear();
    scheduler.remove();
    EXPECT_FALSE(machine.home.exists(timer));
    EXPECT_FALSE(machine.home.exists(service));
    EXPECT_FALSE(machine.home.exists(wanted));
    EXPECT_THAT(machine.tools.commands.front(), Contains("disable"));
    EXPECT_THAT(machine.tools.commands.back(), Contains("daemon-reload"));
    machine.tools.commands.clear();
    scheduler.remove();
    EXPECT_THAT(machine.tools.commands, IsEmpty()) << "nothing was installed";
}

TEST_F(MaintenanceTimerTest, WithoutAUserManagerNothingIsLeftHalfInstalled) {
    for (const char* command : {"daemon-reload", "enable", "restart"}) {
        machine.platform.tools = std::make_unique<FailingTool>(command);
        try {
            scheduler.install("daily");
            ADD_FAILURE() << command;
        } catch (const SchedulerError& error) {
            EXPECT_THAT(error.what(), HasSubstr("Failed to connect to bus: no medium found"));
            EXPECT_THAT(error.what(), Not(HasSubstr("\n")));
        }
        EXPECT_FALSE(machine.home.exists(timer)) << command;
        EXPECT_FALSE(machine.home.exists(service)) << command;
    }
}

TEST_F(MaintenanceTimerTest, AFailedRefreshLeavesTheTimerThatWorked) {
    scheduler.install("daily");
    machine.home.link(wanted, machine.home.path(timer));  // as enabling does
    machine.platform.executablePath = "/opt/elsewhere/velto";
    for (const char* command : {"daemon-reload", "enable", "restart"}) {
        const FailingTool& tool = failAt(command);
        EXPECT_THROW(scheduler.install("monthly"), SchedulerError) << command;
        EXPECT_EQ(machine.home.read(timer), maintenanceTimerText("daily")) << command;
        EXPECT_EQ(machine.home.read(service), maintenanceServiceText("/opt/velto/velto"));
        EXPECT_TRUE(machine.home.exists(wanted)) << command;
        EXPECT_THAT(tool.commands.back(), Contains("restart")) << command;
        EXPECT_THAT(*(tool.commands.end() - 2), Contains("daemon-reload")) << command;
    }
}

TEST_F(MaintenanceTimerTest, AFailedRefreshWithoutTheToolLeavesItToo) {
    scheduler.install("daily");
    machine.tools.result = {.started = false, .startError = "No such file or directory"};
    EXPECT_THROW(scheduler.install("weekends"), SchedulerError);
    EXPECT_EQ(machine.home.read(timer), maintenanceTimerText("daily"));
}

TEST_F(MaintenanceTimerTest, AServiceThatCannotBeWrittenLeavesTheTimerThatWorked) {
    scheduler.install("daily");
    machine.platform.executablePath = "/opt/elsewhere/velto";
    auto watched = std::make_unique<WatchedFiles>(std::move(machine.platform.files));
    watched->unwritable.insert(machine.platform.layout.agentFile);  // written after the service
    machine.platform.files = std::move(watched);
    EXPECT_THROW(scheduler.install("monthly"), FileError);
    EXPECT_EQ(machine.home.read(timer), maintenanceTimerText("daily"));
    EXPECT_EQ(machine.home.read(service), maintenanceServiceText("/opt/velto/velto"));
}

TEST_F(MaintenanceTimerTest, AnOldTimerThatNobodyEnabledIsNotEnabledByAFailure) {
    machine.home.text(timer, "old");
    failAt("restart").onEnable = [&] { machine.home.link(wanted, machine.home.path(timer)); };
    EXPECT_THROW(scheduler.install("daily"), SchedulerError);
    EXPECT_EQ(machine.home.read(timer), "old");
    EXPECT_FALSE(machine.home.exists(service)) << "there was none";
    EXPECT_FALSE(machine.home.exists(wanted));
}

TEST_F(MaintenanceTimerTest, WithoutTheToolNothingIsLeftEither) {
    machine.tools.result = {.started = false, .startError = "No such file or directory"};
    EXPECT_THROW(scheduler.install("daily"), SchedulerError);
    EXPECT_FALSE(scheduler.isInstalled());
    EXPECT_FALSE(machine.home.exists(service));
}

TEST(SystemdUnits, EachFrequencyHasItsDay) {
    EXPECT_THAT(maintenanceTimerText("daily"), HasSubstr("\nOnCalendar=daily\n"));
    EXPECT_THAT(maintenanceTimerText("weekends"), HasSubstr("\nOnCalendar=Sat\n"));
    EXPECT_THAT(maintenanceTimerText("monthly"), HasSubstr("\nOnCalendar=monthly\n"));
    EXPECT_THAT(maintenanceTimerText("daily"), HasSubstr("\nPersistent=true\n"));
}

TEST(SystemdUnits, TheProgramsPathIsOneWordWhateverIsInIt) {
    EXPECT_THAT(maintenanceServiceText("/opt/my 100% $HOME/velto"),
                HasSubstr("\nExecStart=\"/opt/my 100%% $HOME/velto\" --maintenance\n"));
}

TEST(SystemdUnits, AProgramThatWasTakenAwayIsNoFailure) {
    EXPECT_THAT(maintenanceServiceText("/opt/my 100% $HOME/velto"),
                HasSubstr("\nConditionFileIsExecutable=/opt/my 100%% $HOME/velto\n"));
}

TEST_F(MaintenanceTimerTest, APathThatSystemdRefusesIsRefusedWithAReason) {
    for (const char* path :
         {"/opt/\"x\"/velto", "/opt/a\\b", "/opt/a\nb", "/opt/it's", "/opt/velto "}) {
        machine.platform.executablePath = path;
        EXPECT_THROW(scheduler.install("daily"), SchedulerError) << path;
        EXPECT_FALSE(machine.home.exists(service)) << path;
    }
    machine.platform.executablePath = "/opt/velto/velto";
    scheduler.install("daily");
    machine.platform.executablePath = "/opt/a\\b";
    EXPECT_THROW(scheduler.install("monthly"), SchedulerError);
    EXPECT_EQ(machine.home.read(timer), maintenanceTimerText("daily")) << "the older one stays";
}

}  // namespace
}  // namespace velto
