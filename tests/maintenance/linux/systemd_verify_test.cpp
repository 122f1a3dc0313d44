// What systemd itself says of the units.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "maintenance/systemd_units.h"
#include "platform/posix/PosixToolRunner.h"
#include "support/TempHome.h"

namespace velto {
namespace {

constexpr const char* tool = "/usr/bin/systemd-analyze";

TEST(SystemdUnits, AreVerifiedBySystemd) {
    struct stat status;
    if (stat(tool, &status) != 0) GTEST_SKIP() << tool << " is not installed";
    TempHome folder;
    const std::string program = folder.text("a 100% odd $name ñ/velto", "#!/bin/sh\n").path();
    ASSERT_EQ(chmod(program.c_str(), 0700), 0);
    folder.folder("run");
    setenv("XDG_RUNTIME_DIR", folder.path("run").c_str(), 1);
    for (const char* frequency : {"daily", "weekends", "monthly"}) {
        folder.text("app.velto.maintenance.service", maintenanceServiceText(program));
        folder.text("app.velto.maintenance.timer", maintenanceTimerText(frequency));
        const ToolResult result = PosixToolRunner().run(
            tool, {"--user", "verify", folder.path("app.velto.maintenance.timer"),
                   folder.path("app.velto.maintenance.service")});
        EXPECT_EQ(result.exitStatus, 0) << frequency;
        EXPECT_EQ(result.standardError, "") << "unknown settings are only warned about";
    }
    const std::string service = maintenanceServiceText(program);
    const std::size_t line = service.find("Condition");
    const std::string condition = service.substr(line, service.find('\n', line) - line);
    const auto holds = [&] {
        return PosixToolRunner().run(tool, {"--user", "condition", condition}).exitStatus == 0;
    };
    EXPECT_TRUE(holds()) << condition;
    ASSERT_EQ(unlink(program.c_str()), 0);
    EXPECT_FALSE(holds()) << "a program that was taken away is not started";
}

}  // namespace
}  // namespace velto
