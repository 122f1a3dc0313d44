#include <algorithm>
#include <memory>
#include <vector>

#include "monitor/MonitorFixture.h"
#include "platform/linux/LinuxIcons.h"
#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/installed_applications.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/linux/Child.h"
#include "support/linux/icon_worker.h"
#include "support/made_picture.h"
#include "support/made_property_list.h"

namespace velto {
namespace {

using sampling::Dictionary;

/// Processes that really run, as the desktop entries of a made home tell them apart.
struct RealApplications : testing::Test {
    TempHome home;
    PosixFileManager files;
    std::vector<NamedLocation> folders{{entryOrigin::user, home.path("share/applications")}};
    LinuxIcons icons{files, iconWorker, folders};
    InstalledApplications installed{files, folders};
    LinuxProcessTable table{{.applications = [this] { return installed.index(); }}};
    FakeSystemCounters counters;
    FakeVolumeInfo volumes;
    FakeClock clock;
    ApplicationActivity activity;
    SystemMonitor monitor{
        MonitorContext{.counters = counters,
                       .processes = table,
                       .volumes = volumes,
                       .clock = clock,
                       .activity = activity,
                       .startupVolume = "/",
                       .icon = [this](const std::string& path,
                                      int points) { return icons.pngDataURL(path, points); }},
        std::make_unique<FakeSerialQueue>(std::make_shared<FakeSerialQueue::Control>())};

    /// Starts the program so many times.
    std::vector<std::unique_ptr<Child>> run(const std::string& program, int count) {
        std::vector<std::unique_ptr<Child>> children;
        children.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            children.push_back(std::make_unique<Child>(home, program));
        return children;
    }

    /// The group of all processes of the table that belong to an application of this name, whether
    /// or not it is among the heaviest of the machine.
    Dictionary groupOfApplication(const std::string& name) {
        ProcessMap processes = table.list();
        const RunningApps apps = table.runningApps();
        std::erase_if(processes, [&](const auto& process) {
            const auto owner = ownerOf(process.first, processes, apps);
            return !owner || apps.at(*owner).name != name;
        });
        const std::vector<Dictionary> groups = monitor.groups(processes, {}, 0);
        EXPECT_EQ(groups.size(), 1u);
        return groups.empty() ? Dictionary() : groups.front();
    }
};

TEST_F(RealApplications, ABrowserOfThirtyProcessesIsOneGroupWithItsNameAndIcon) {
    const std::string program = home.path("apps/surfer/surfer");
    home.text(
        "share/applications/surfer.desktop",
        "[Desktop Entry]\nType=Application\nName=Surfer\nIcon=surfer\nExec=" + program + " %U\n");
    home.text("share/icons/hicolor/48x48/apps/surfer.png", pngPicture(48, 48, {200, 10, 10, 255}));
    auto processes = run(program, 10);
    // Its helpers are other programs in its folder.
    for (auto& helper : run(home.path("apps/surfer/helpers/content"), 20))
        processes.push_back(std::move(helper));
    const Dictionary group = groupOfApplication("Surfer");
    EXPECT_EQ(group["procs"], 30);
    EXPECT_EQ(group["kind"], "app");
    EXPECT_GT(group["mem"], 0);
    EXPECT_TRUE(group["icon"].get<std::string>().starts_with("data:image/png;base64,"));
    EXPECT_TRUE(std::ranges::any_of(
        processes, [&](const auto& child) { return child->process() == group["pid"]; }));
}

TEST_F(RealApplications, InAMacsHomeABundleIsOneGroupWithItsNameAndIcon) {
    home.text("Surfer.app/Contents/Info.plist",
              xmlPropertyList(textDictionary({{"CFBundleIdentifier", "com.example.surfer"},
                                              {"CFBundleName", "Surfer of the Mac"},
                                              {"CFBundleIconFile", "Icon"}})));
    home.text("Surfer.app/Contents/Resources/Icon.icns",
              iconFile({{"ic07", pngPicture(128, 128, {200, 10, 10, 255})}}));
    const auto processes = run(home.path("Surfer.app/Contents/MacOS/Surfer"), 2);
    const auto helpers = run(home.path("Surfer.app/Contents/Helper.app/Contents/MacOS/Helper"), 3);
    const Dictionary group = groupOfApplication("Surfer of the Mac");
    EXPECT_EQ(group["procs"], 5);
    EXPECT_TRUE(group["icon"].get<std::string>().starts_with("data:image/png;base64,"));
}

TEST_F(RealApplications, AnApplicationThatIsInstalledWhileItRunsIsRecognisedAtTheNextList) {
    const std::string program = home.path("apps/late/late");
    const auto processes = run(program, 2);
    // Other applications may run on this machine beside the test, also Velto.
    const ProcessMap before = table.list();
    for (const auto& child : processes)
        EXPECT_FALSE(ownerOf(static_cast<pid_t>(child->process()), before, table.runningApps()));
    home.text("share/applications/late.desktop",
              "[Desktop Entry]\nType=Application\nName=Late\nExec=" + program + "\n");
    EXPECT_EQ(groupOfApplication("Late")["procs"], 2);
}

}  // namespace
}  // namespace velto
