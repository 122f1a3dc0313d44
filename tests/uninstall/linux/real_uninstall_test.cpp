// The uninstaller over real processes, real property lists and real icons, as on a Linux machine
// with a Mac's home.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include "../UninstallWorld.h"
#include "platform/linux/LinuxIcons.h"
#include "platform/linux/LinuxRunningApplications.h"
#include "platform/posix/PosixToolRunner.h"
#include "support/linux/Child.h"
#include "support/linux/icon_worker.h"
#include "support/made_picture.h"
#include "support/made_property_list.h"

namespace velto {
namespace {

class RealUninstallTest : public testing::Test, protected UninstallWorld {
protected:
    RealUninstallTest() : UninstallWorld(buildVolume()) {
        Platform& platform = machine.platform;
        platform.running = std::make_unique<LinuxRunningApplications>(*platform.dispatcher);
        platform.icons = std::make_unique<LinuxIcons>(*platform.files, iconWorker);
        platform.tools = std::make_unique<PosixToolRunner>();
        platform.clock = std::make_unique<SystemClock>();
        platform.sleeper = std::make_unique<SystemSleeper>();
    }
    /// Running applications are found by their identifiers on the whole machine, where the same
    /// test may be running twice.
    std::string foobar() {
        return bundle(userApplications(), "Foobar.app",
                      {{"CFBundleIdentifier", identifier}, {"CFBundleExecutable", "Foobar"}});
    }

    const std::string identifier = fmt::format("com.example.foobar.process{}", ::getpid());
};

TEST_F(RealUninstallTest, AnApplicationWithARunningHelperIsQuitAndDeleted) {
    const std::string path = foobar();
    const std::string cache = library("Caches/" + identifier + "/data");
    Child child(home, path + "/Contents/MacOS/Foobar");
    Child helper(home, path + "/Contents/Library/LoginItems/Helper.app/Contents/MacOS/Helper");
    Child other(home, home.path("Applications/Other.app/Contents/MacOS/Other"));
    const auto listed = apps.listApps();
    ASSERT_FALSE(listed.empty());
    EXPECT_TRUE(listed.front().running);

    const auto result =
        remover.uninstall(listed.front(), {path, home.path("Library/Caches/" + identifier)});
    EXPECT_EQ(result.closed, 2);
    EXPECT_EQ(result.removed, 2);
    EXPECT_THAT(result.failures, testing::IsEmpty());
    EXPECT_EQ(child.wait(), SIGTERM);
    EXPECT_EQ(helper.wait(), SIGTERM);
    EXPECT_FALSE(home.exists("Applications/Foobar.app"));
    EXPECT_EQ(kill(static_cast<pid_t>(other.process()), 0), 0) << "a neighbour was ended";
}

TEST_F(RealUninstallTest, OneThatIgnoresTheRequestIsForcedAfterTwoSecondsAndNotSooner) {
    const std::string path = foobar();
    Child child(home, path + "/Contents/MacOS/Foobar", Child::Manner::ignoresTerm);
    const double start = machine.platform.clock->monotonic();
    EXPECT_EQ(remover.quitApp(*apps.readApp(path)), 1);
    EXPECT_GE(machine.platform.clock->monotonic() - start, 2.0);
    EXPECT_EQ(child.wait(), SIGKILL);
}

TEST_F(RealUninstallTest, ToolsThatThisMachineLacksChangeNothing) {
    const std::string path = foobar();
    EXPECT_EQ(apps.teamID(path), std::nullopt);
    const std::string agent = library("LaunchAgents/" + identifier + ".plist",
                                      xmlPropertyList(textDictionary({{"Label", "com.example"}})));
    EXPECT_EQ(remover.uninstall(*apps.readApp(path), {agent}).removed, 1);
}

TEST_F(RealUninstallTest, ABundleIsShownWithItsOwnIcon) {
    const std::string path =
        bundle(userApplications(), "Foobar.app",
               {{"CFBundleIdentifier", "com.example.foobar"}, {"CFBundleIconFile", "Icon"}});
    EXPECT_EQ(apps.iconDataURL(path, 32), std::nullopt);
    put(path + "/Contents/Resources/Icon.icns",
        iconFile({{"ic07", pngPicture(128, 128, {9, 90, 200})}}));
    const auto icon = apps.iconDataURL(path, 32);
    ASSERT_TRUE(icon);
    EXPECT_TRUE(icon->starts_with("data:image/png;base64,iVBORw0KGgo"));
    EXPECT_EQ(icon->find('\n'), std::string::npos);
}

}  // namespace
}  // namespace velto
