#include <nlohmann/json.hpp>

#include "bridge/AboutIntent.h"
#include "bridge/BridgeFixture.h"

namespace velto {
namespace {

struct AboutTest : BridgeFixture {
    nlohmann::json ask() {
        open();
        post("about");
        const std::string& script = page->scripts.back();
        EXPECT_THAT(script, testing::HasSubstr("velto.onAbout("));
        return page->lastArgument("onAbout");
    }
    static nlohmann::json place(const char* role, const std::string& path, bool there) {
        return {{"role", role}, {"path", path}, {"there", there}};
    }
};

TEST_F(AboutTest, AMacSaysWhichVersionItIsAndWhereItKeepsWhat) {
    machine.home.text("Library/Application Support/Velto/lastScan.json", "{}");
    machine.home.text("Library/Preferences/app.velto.plist", "x");
    const std::string library = machine.home.path("Library");
    EXPECT_EQ(
        ask(),
        nlohmann::json(
            {{"version", "1.2.3"},
             {"license", "MIT"},
             {"places",
              {place("data", library + "/Application Support/Velto", true),
               place("trash", library + "/Application Support/Velto/Trash", false),
               place("settings", library + "/Preferences/app.velto.plist", true),
               place("schedule", library + "/LaunchAgents/app.velto.maintenance.plist", false)}}}));
}

TEST_F(AboutTest, OnLinuxTheSettingsLieInAFolderOfTheirOwn) {
    const std::string home = machine.home.path();
    machine.platform.layout = HomeLayout::freedesktop(
        home, [](const std::string&) { return std::nullopt; }, "");
    machine.platform.settingsFolder = home + "/.config/velto";
    machine.home.folder(".config/velto");
    const nlohmann::json places = ask()["places"];
    EXPECT_EQ(places[0]["path"], home + "/.local/share/Velto");
    EXPECT_EQ(places[2], place("settings", home + "/.config/velto", true));
    EXPECT_EQ(places[3], place("schedule", machine.platform.layout.agentFile, false));
}

}  // namespace
}  // namespace velto
