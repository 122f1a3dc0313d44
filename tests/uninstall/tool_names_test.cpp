// Names from files that other programs are started with: what looks like an option, a pattern or a
// path reaches none of them.

#include "uninstall/tool_names.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "UninstallWorld.h"
#include "support/made_property_list.h"

namespace velto {
namespace {

using testing::IsEmpty;

const std::string optionLike[] = {"-",
                                  "--",
                                  "-y",
                                  "--all",
                                  "--user",
                                  "--installation=x",
                                  "-org.acme.App",
                                  "--org.acme.App",
                                  "",
                                  " ",
                                  "/",
                                  "..",
                                  "../..",
                                  "../../../../Projects",
                                  "org.acme.App/../..",
                                  "/org.acme.App",
                                  "org.acme.*",
                                  "*",
                                  "org.acme.App --all",
                                  "org.acme.App\n",
                                  "org.acme.\xff",
                                  std::string("org.acme.App\0x", 14),
                                  "$(id)",
                                  std::string(300, 'a') + ".b.c"};

TEST(ToolNames, NoOptionLikeNameFitsAnyGrammar) {
    for (const std::string& name : optionLike) {
        EXPECT_FALSE(isFlatpakIdentifier(name)) << name;
        EXPECT_EQ(isUnitName(name), name == "..") << name;
        const bool isHarmlessLabel = name == ".." || name == "*" || name == "org.acme.*" ||
                                     name == "$(id)" || name == "org.acme.\xff";
        EXPECT_EQ(isServiceLabel(name), isHarmlessLabel) << name;
    }
    for (const char* name : {"org.acme", "org..App", ".org.acme.App", "org.acme.App.",
                             "1org.acme.App", "org.1acme.App", "org.-acme.App", "org.acme.Äpp"})
        EXPECT_FALSE(isFlatpakIdentifier(name)) << name;
}

TEST(ToolNames, NamesAsTheProgramsMakeThemFit) {
    for (const char* name : {"org.acme.App", "org.gnome.Boxes", "com.example.my_app.sub-part",
                             "io.github._1password.App"})
        EXPECT_TRUE(isFlatpakIdentifier(name)) << name;
    for (const char* name : {"foobar.service", "app-org.acme.App@1.service", "dev-sda\\x2d1.timer"})
        EXPECT_TRUE(isUnitName(name)) << name;
    for (const char* label :
         {"com.example.foobar", "com.example.foo bar", "com.example.foobar.501"})
        EXPECT_EQ(isServiceLabel(label), std::string(label).find(' ') == std::string::npos)
            << label;
}

class ToolArguments : public testing::Test, protected UninstallWorld {
protected:
    void becomeLinuxHome() {
        std::filesystem::remove_all(home.path("Library"));
        machine.platform.layout = HomeLayout::freedesktop(
            home.path(), [](const std::string&) { return std::nullopt; }, "");
        machine.platform.layout.desktopEntries = {
            {entryOrigin::user, home.path(".local/share/applications")}};
    }
};

TEST_F(ToolArguments, FlatpakIsNeverStartedWithAnOption) {
    becomeLinuxHome();
    home.text("Projects/thesis", "kept");
    for (const std::string& name : optionLike) {
        SCOPED_TRACE(name);
        const std::string path = machine.platform.layout.userFlatpaks + "/" + name;
        remover.uninstall({.bid = name, .name = "App", .path = path}, {path});
        EXPECT_THAT(machine.tools.commands, IsEmpty());
    }
}

TEST_F(ToolArguments, ADesktopEntryThatNamesNoFlatpakIsJustAnEntry) {
    becomeLinuxHome();
    home.text("Projects/thesis", "kept");
    home.folder(".local/share/flatpak/app");
    home.text(".local/share/applications/x.desktop",
              "[Desktop Entry]\nType=Application\nName=X\nExec=/bin/true run x\n"
              "X-Flatpak=../../../../Projects\n");
    const auto listed = apps.listApps();
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_EQ(listed[0].path, home.path(".local/share/applications/x.desktop"));
    EXPECT_EQ(listed[0].bid, "x");
}

TEST_F(ToolArguments, SystemdIsNeverAskedForAPattern) {
    becomeLinuxHome();
    for (const char* name : {"-h.service", "--all.service", "*.service", "a b.service",
                             "\xc3\xa4.timer", "?.timer", "[a].service"}) {
        const std::string path = home.text(".config/systemd/user/" + std::string(name), "").path();
        remover.unloadAgents({path});
        EXPECT_THAT(machine.tools.commands, IsEmpty()) << name;
    }
}

TEST_F(ToolArguments, LaunchdIsOnlyAskedForOneService) {
    for (const char* label : {"-k", "--", "a/b", "../system/com.apple.x", "com example", "a\nb"}) {
        remover.unloadAgents(
            {agent(home.path("Library/LaunchAgents/com.example.foobar.plist"), label)});
        EXPECT_THAT(machine.tools.commands, IsEmpty()) << label;
    }
}

TEST_F(ToolArguments, TheSignatureOfAnOptionIsNotAskedFor) {
    for (const char* path : {"-v", "--remove-signature", "relative.app", ""}) {
        EXPECT_EQ(apps.teamID(path), std::nullopt);
        EXPECT_THAT(machine.tools.commands, IsEmpty()) << path;
    }
}

}  // namespace
}  // namespace velto
