// What an uninstall does to launch agents and daemons, and when.

#include <fmt/format.h>
#include <gmock/gmock.h>

#include "UninstallWorld.h"
#include "support/made_property_list.h"
#include "uninstall/AppRemover.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Failure = AppRemover::Failure;

class AgentsTest : public testing::Test, protected UninstallWorld {
protected:
    void SetUp() override {
        entry = *apps.readApp(application("Foobar"));
        machine.platform.userIdentifier = 501;
    }

    AppEntry entry;
};

TEST_F(AgentsTest, AgentsAndDaemonsAreUnloadedByTheirLabels) {
    remover.unloadAgents({agent(home.path("Library/LaunchAgents/a.plist"), "com.example.agent"),
                          agent(systemLibrary("LaunchDaemons/d.plist"), "com.example.daemon"),
                          agent(systemLibrary("LaunchAgents/s.plist"), "com.example.shared"),
                          agent(home.path("Library/Preferences/p.plist"), "com.example.nothing")});
    EXPECT_THAT(
        machine.tools.commands,
        ElementsAre(ElementsAre("/bin/launchctl", "bootout", "gui/501/com.example.agent"),
                    ElementsAre("/bin/launchctl", "bootout", "system/com.example.daemon"),
                    ElementsAre("/bin/launchctl", "bootout", "gui/501/com.example.shared")));
}

TEST_F(AgentsTest, AnAgentWithoutALabelIsSkipped) {
    put(home.path("Library/LaunchAgents/list.plist"),
        xmlPropertyList({PropertyList::List{{"Label"}}}));
    put(home.path("Library/LaunchAgents/number.plist"),
        xmlPropertyList({PropertyList::Dictionary{{"Label", {std::int64_t{1}}}}}));
    put(home.path("Library/LaunchAgents/damaged.plist"), "damaged");
    remover.unloadAgents({home.path("Library/LaunchAgents/list.plist"),
                          home.path("Library/LaunchAgents/number.plist"),
                          home.path("Library/LaunchAgents/damaged.plist"),
                          home.path("Library/LaunchAgents/missing.plist"),
                          agent(home.path("Library/LaunchAgents/empty.plist"), "")});
    EXPECT_THAT(machine.tools.commands, IsEmpty());
}

TEST_F(AgentsTest, OnlyPathsThatMayBeActedOnAreUnloaded) {
    const std::string far = disk.path("elsewhere/LaunchAgents/a.plist");
    agent(far, "com.example.far");
    const std::string daemon = agent(systemLibrary("LaunchDaemons/d.plist"), "com.example.daemon");
    machine.tools.result.started = false;  // a machine without the tool
    const auto result = remover.uninstall(entry, {far, daemon});
    EXPECT_THAT(machine.tools.commands, testing::SizeIs(1));
    EXPECT_THAT(result.failures,
                ElementsAre(Failure{"a.plist", far, "admin"}, Failure{"d.plist", daemon, "admin"}));
}

// In an uninstall

TEST_F(AgentsTest, TheApplicationIsQuitAndItsAgentsUnloadedBeforeTheStopIsReportedAsDone) {
    const std::string path =
        agent(home.path("Library/LaunchAgents/com.example.foobar.plist"), "com.example.foobar");
    auto& process = machine.running.add({.bundleIdentifier = entry.bid});
    std::vector<std::string> steps;
    std::size_t unloadedWhenAsked = 1;
    machine.sleeper.onSleep = [&] {
        unloadedWhenAsked = machine.tools.commands.size();
        process.terminated = true;
    };
    process.ignoresTerminate = true;
    remover.uninstall(entry, {path}, [&](std::string_view stage, const auto&, double percent) {
        if (stage != "stop") return;
        steps.push_back(fmt::format("{}: asked {}, unloaded {}", percent, process.asked,
                                    machine.tools.commands.size()));
    });
    EXPECT_THAT(steps, ElementsAre("3: asked 0, unloaded 0", "16: asked 1, unloaded 1",
                                   "20: asked 1, unloaded 1"));
    EXPECT_EQ(unloadedWhenAsked, 0u) << "an agent that is unloaded first quits nothing";
}

TEST_F(AgentsTest, AnAgentIsUnloadedBeforeItsFileIsDeleted) {
    const std::string path =
        agent(home.path("Library/LaunchAgents/com.example.foobar.plist"), "com.example.foobar");
    std::vector<std::size_t> unloaded;
    calls.before = [&](const char*, const char*) {
        unloaded.push_back(machine.tools.commands.size());
    };
    EXPECT_EQ(remover.uninstall(entry, {path}).removed, 1);
    calls.before = nullptr;
    EXPECT_THAT(machine.tools.commands, ElementsAre(ElementsAre("/bin/launchctl", "bootout",
                                                                "gui/501/com.example.foobar")));
    ASSERT_FALSE(unloaded.empty());
    EXPECT_THAT(unloaded, testing::Each(1u));
    EXPECT_FALSE(isThere(path));
}

TEST_F(AgentsTest, ADaemonIsUnloadedForTheSystemAndThenReportedAsOutOfReach) {
    const std::string daemon =
        agent(systemLibrary("LaunchDaemons/com.example.foobar.plist"), "com.example.foobar");
    const auto result = remover.uninstall(entry, {daemon});
    EXPECT_THAT(machine.tools.commands,
                ElementsAre(ElementsAre("/bin/launchctl", "bootout", "system/com.example.foobar")));
    EXPECT_THAT(result.failures, ElementsAre(Failure{"com.example.foobar.plist", daemon, "admin"}));
    EXPECT_TRUE(isThere(daemon));
}

// This program's own

TEST_F(AgentsTest, TheProgramsOwnAgentStaysLoadedAndStaysThere) {
    const std::string own = agent(machine.platform.layout.agentFile, "app.velto.maintenance");
    home.link("Library/LaunchAgents/linked.plist", own);
    const std::string linked = home.path("Library/LaunchAgents/linked.plist");
    const std::string other = agent(home.path("Library/LaunchAgents/other.plist"), "com.other");
    const auto result = remover.uninstall(entry, {own, linked, other});
    EXPECT_THAT(machine.tools.commands,
                ElementsAre(ElementsAre("/bin/launchctl", "bootout", "gui/501/com.other")));
    EXPECT_THAT(result.failures,
                ElementsAre(Failure{"app.velto.maintenance.plist", own, "protected"},
                            Failure{"linked.plist", linked, "protected"}));
    EXPECT_TRUE(isThere(own));
}

TEST_F(AgentsTest, TheProgramsFolderInTheCloudStays) {
    const std::string backup = machine.platform.layout.cloudFolder + "/backup";
    put(backup, "backup");
    for (const std::string& path : {machine.platform.layout.cloudFolder, backup}) {
        const auto result = remover.uninstall(entry, {path});
        ASSERT_EQ(result.failures.size(), 1u);
        EXPECT_EQ(result.failures[0].reason, "protected");
    }
    EXPECT_TRUE(isThere(backup));
}

}  // namespace
}  // namespace velto
