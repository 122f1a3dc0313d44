#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "platform/posix/PosixToolRunner.h"
#include "support/TempHome.h"

namespace velto {
namespace {

/// What the descriptors of a tool lead to, by number.
std::map<int, std::string> descriptorsOfATool() {
    const ToolResult result = PosixToolRunner().run(
        "/usr/bin/find", {"/proc/self/fd", "-type", "l", "-fprintf", "/dev/stderr", "%f %l\n"});
    std::map<int, std::string> targets;
    std::istringstream lines(result.standardError);
    int number = 0;
    for (std::string target; lines >> number && std::getline(lines >> std::ws, target);) {
        targets[number] = target;
    }
    return targets;
}

TEST(PosixToolRunner, AToolInheritsNoFileOfTheProgramAndOneEndOfThePipeAlone) {
    TempHome home;
    const auto file = home.file("secret", 1);
    const int own = open(file.path().c_str(), O_RDONLY | O_CLOEXEC);
    const auto targets = descriptorsOfATool();
    close(own);
    ASSERT_TRUE(targets.contains(2));
    EXPECT_EQ(targets.at(0), "/dev/null");
    EXPECT_EQ(targets.at(1), "/dev/null");
    const auto leadingTo = [&](const std::string& target) {
        return std::count_if(targets.begin(), targets.end(),
                             [&](const auto& entry) { return entry.second == target; });
    };
    EXPECT_EQ(leadingTo(file.path()), 0);
    EXPECT_EQ(leadingTo(targets.at(2)), 1);
}

}  // namespace
}  // namespace velto
