#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <string_view>

#include "app/VeltoApp.h"
#include "app/information.h"
#include "app/run_modes.h"
#include "bridge/JSBridge.h"
#include "platform/posix/PosixFileManager.h"
#include "support/FakeWebView.h"
#include "support/TestPlatform.h"

namespace velto {
namespace {

using testing::ElementsAre;

constexpr const char* agent = "Library/LaunchAgents/app.velto.maintenance.plist";

TEST(RunModes, AnArgumentCountsWhereverItStandsAndMaintenanceWins) {
    EXPECT_EQ(runModeOf({"velto"}), RunMode::interactive);
    EXPECT_EQ(runModeOf({}), RunMode::interactive);
    EXPECT_EQ(runModeOf({"velto", "x", "--reset"}), RunMode::reset);
    EXPECT_EQ(runModeOf({"velto", "--reset", "--maintenance"}), RunMode::maintenance);
    EXPECT_EQ(runModeOf({"--maintenance"}), RunMode::maintenance);
    EXPECT_EQ(runModeOf({"velto", "--Reset"}), RunMode::interactive);
    EXPECT_EQ(runModeOf({"velto", "--reset=1"}), RunMode::interactive);
}

TEST(RunModes, TheDetailedLogIsAskedForInAnyMode) {
    EXPECT_TRUE(wantsDetailedLog({"velto", "--debug-log"}));
    EXPECT_TRUE(wantsDetailedLog({"velto", "--maintenance", "--debug-log"}));
    EXPECT_FALSE(wantsDetailedLog({"velto", "--debug-logs", "debug-log"}));
    EXPECT_EQ(runModeOf({"velto", "--debug-log"}), RunMode::interactive);
    EXPECT_EQ(runModeOf({"velto", "--debug-log", "--reset"}), RunMode::reset);
}

TEST(RunModes, ResetTakesAgentAndDataAwayAndKeepsSettings) {
    TestPlatform machine;
    machine.home.text("Library/Application Support/Velto/lastScan.json", "{}");
    machine.home.text("Library/Application Support/Other/keep.txt", "keep");
    machine.home.text(agent, "x");
    machine.defaults.values["velto.retentionDays"] = std::int64_t{7};
    EXPECT_EQ(runReset(machine.platform), 0);
    EXPECT_FALSE(machine.home.exists("Library/Application Support/Velto"));
    EXPECT_FALSE(machine.home.exists(agent));
    EXPECT_EQ(machine.home.read("Library/Application Support/Other/keep.txt"), "keep");
    EXPECT_EQ(machine.defaults.values.size(), 1u);
    EXPECT_TRUE(machine.log.holds("Velto ▶ reset completo: LaunchAgent y datos eliminados"));
    EXPECT_EQ(runReset(machine.platform), 0) << "nothing left is fine";
}

TEST(RunModes, AResetOfALinkedDataFolderTakesTheLinkAloneAndSaysSo) {
    TestPlatform machine;
    const std::string& data = machine.platform.layout.dataFolder;
    machine.home.text("Disk/Velto/Trash/manifest.json", "{}");
    machine.home.link("Library/Application Support/Velto", machine.home.path("Disk/Velto"));
    EXPECT_EQ(runReset(machine.platform), 0);
    EXPECT_FALSE(machine.platform.files->exists(data));
    EXPECT_EQ(machine.home.read("Disk/Velto/Trash/manifest.json"), "{}");
    EXPECT_FALSE(machine.log.holds("Velto ▶ reset completo: LaunchAgent y datos eliminados"));
    EXPECT_TRUE(machine.log.holds(
        "Velto ▶ reset incompleto: la carpeta de datos era un enlace, que se ha quitado; los datos "
        "siguen en " +
        machine.home.path("Disk/Velto")));
    machine.log.clear();
    machine.home.link("Library/Application Support/Velto", "nowhere");
    EXPECT_EQ(runReset(machine.platform), 0);
    EXPECT_FALSE(machine.platform.files->exists(data));
    EXPECT_TRUE(machine.log.holds("Velto ▶ reset completo: LaunchAgent y datos eliminados"));
}

TEST(RunModes, AResetThatCannotDeleteEverythingSaysSoAndIsNoFailure) {
    TestPlatform machine;
    machine.home.text("Library/Application Support/Velto/lastScan.json", "{}");
    class Refusing final : public FileCalls {
        int remove(int folder, const char* name, int flags) override {
            if (std::string_view(name) != "lastScan.json")
                return FileCalls::remove(folder, name, flags);
            errno = EBUSY;
            return -1;
        }
    } calls;
    machine.platform.mover = std::make_unique<PosixFileManager>(calls);
    EXPECT_EQ(runReset(machine.platform), 0);
    EXPECT_TRUE(machine.home.exists("Library/Application Support/Velto/lastScan.json"));
    EXPECT_FALSE(machine.log.holds("Velto ▶ reset completo: LaunchAgent y datos eliminados"));
    EXPECT_TRUE(machine.log.holds("Velto ▶ reset incompleto: quedan datos en " +
                                  machine.platform.layout.dataFolder));
}

struct ApplicationTest : testing::Test {
    TestPlatform machine;
    AppUsage usage{machine.platform};
    FakeApplicationShell shell;
    std::shared_ptr<FakeWebView> page = std::make_shared<FakeWebView>();

    ApplicationTest() { setProcessPlatform(machine.platform); }

    static const AppCommand& command(std::size_t index) { return VeltoApp::commands()[index]; }
};

TEST_F(ApplicationTest, ClosingTheWindowKeepsRunningWhileMaintenanceIsInstalled) {
    AppDelegate delegate(machine.platform, usage);
    EXPECT_TRUE(delegate.applicationShouldTerminateAfterLastWindowClosed());
    machine.home.text(agent, "x");
    EXPECT_FALSE(delegate.applicationShouldTerminateAfterLastWindowClosed());
    VeltoTrashService trash{*machine.platform.files, *machine.platform.mover, machine.clock,
                            machine.log, machine.platform.layout};
    resetLocalData(machine.platform, trash);
    EXPECT_TRUE(delegate.applicationShouldTerminateAfterLastWindowClosed());
}

TEST_F(ApplicationTest, LaunchingTakesOldNotificationsBack) {
    AppDelegate(machine.platform, usage).applicationDidFinishLaunching();
    EXPECT_EQ(machine.notifications.removals, 1);
    EXPECT_TRUE(usage.observing);
}

TEST_F(ApplicationTest, CommandsBeforeTheBridgeExistsDoNothing) {
    VeltoApp app(machine.platform);
    app.setShell(shell);
    for (const AppCommand& each : VeltoApp::commands())
        app.perform(each);
    AppDelegate(machine.platform, usage).applicationDidBecomeActive();
    app.pageLoaded();
    EXPECT_TRUE(machine.log.lines().empty());
}

TEST_F(ApplicationTest, CommandsSendTheirIntents) {
    VeltoApp app(machine.platform);
    app.setShell(shell);
    app.windowOpened(page);
    for (const AppCommand& each : VeltoApp::commands())
        app.perform(each);
    EXPECT_THAT(JSBridge::current()->pendingIntents,
                ElementsAre("scan", "undoLast", "goView", "goView"));
    EXPECT_THAT(page->scripts, testing::Contains(testing::HasSubstr("go('apps')")));
    EXPECT_THAT(page->scripts, testing::Contains(testing::HasSubstr("go('papelera')")));
    app.windowClosed();
    EXPECT_EQ(JSBridge::current(), nullptr);
}

TEST_F(ApplicationTest, AnOptionOfTheCommandLineAsksForItsCommand) {
    const auto titleFor = [](const std::vector<std::string>& arguments) {
        const AppCommand* const asked = VeltoApp::askedFor(arguments);
        return asked == nullptr ? "" : std::string(asked->titleEn);
    };
    EXPECT_EQ(titleFor({"velto", "--analyze"}), "Analyze disk");
    EXPECT_EQ(titleFor({"velto", "--debug-log", "--applications"}), "Uninstall an application");
    EXPECT_EQ(titleFor({"velto", "--trash"}), "Open Velto Trash");
    EXPECT_EQ(titleFor({"velto"}), "");
    EXPECT_EQ(titleFor({"velto", "trash", "--undo", ""}), "") << "an undo is asked for in sight";
}

TEST_F(ApplicationTest, ACommandThatWaitsForThePageIsCarriedOutOnceThere) {
    VeltoApp app(machine.platform);
    app.setShell(shell);
    app.performWhenShown(command(0));
    app.performWhenShown(command(3));
    app.windowOpened(page);
    EXPECT_THAT(JSBridge::current()->pendingIntents, testing::IsEmpty());
    app.pageLoaded();
    EXPECT_THAT(JSBridge::current()->pendingIntents, ElementsAre("goView"));
    EXPECT_THAT(page->scripts, testing::Contains(testing::HasSubstr("go('papelera')")));
    app.pageLoaded();  // once more, as after the end of the page's process
    EXPECT_THAT(JSBridge::current()->pendingIntents, ElementsAre("goView"));
    app.performWhenShown(command(2));
    EXPECT_THAT(JSBridge::current()->pendingIntents, ElementsAre("goView", "goView"));
    app.windowClosed();
    app.performWhenShown(command(3));
    app.windowOpened(page);
    app.pageLoaded();
    EXPECT_THAT(JSBridge::current()->pendingIntents, ElementsAre("goView"));
}

TEST_F(ApplicationTest, TheMenuOpensTheGuide) {
    VeltoApp app(machine.platform);
    app.setShell(shell);
    app.windowOpened(page);
    app.perform(VeltoApp::guideCommand());
    EXPECT_THAT(page->scripts.back(), testing::HasSubstr("go('guia')"));
    EXPECT_EQ(app.title(VeltoApp::guideCommand()), "Velto Guide");
    app.windowClosed();
}

TEST_F(ApplicationTest, ThePageIsToldTheVersionThatTheProgramPrints) {
    VeltoApp app(machine.platform);
    app.setShell(shell);
    app.windowOpened(page);
    page->post({{"type", "about"}});
    EXPECT_THAT(page->scripts.back(),
                testing::HasSubstr(R"("version":")" + std::string(versionText()) + '"'));
    app.windowClosed();
}

TEST_F(ApplicationTest, CommandTitlesFollowTheLanguage) {
    VeltoApp app(machine.platform);
    EXPECT_EQ(app.title(command(0)), "Analyze disk");
    EXPECT_EQ(app.title(command(3)), "Open Velto Trash");
    app.language().setCode("es");
    EXPECT_EQ(app.title(command(0)), "Analizar disco");
    EXPECT_EQ(app.title(command(1)), "Deshacer última limpieza");
    EXPECT_EQ(app.title(command(2)), "Desinstalar una aplicación");
    EXPECT_EQ(app.title(command(3)), "Abrir la Papelera de Velto");
}

TEST_F(ApplicationTest, BecomingActiveChecksAccess) {
    VeltoApp app(machine.platform);
    app.setShell(shell);
    app.windowOpened(page);
    page->scripts.clear();
    app.delegate().applicationDidBecomeActive();
    EXPECT_EQ(page->calls("onPermissions").size(), 1u);
}

TEST_F(ApplicationTest, AWindowOpenedAgainGetsABridgeOfItsOwn) {
    VeltoApp app(machine.platform);
    app.setShell(shell);
    app.windowOpened(page);
    app.windowClosed();
    const auto second = std::make_shared<FakeWebView>();
    app.windowOpened(second);
    app.pageLoaded();
    EXPECT_EQ(second->calls("setState").size(), 1u);
    EXPECT_TRUE(page->calls("setState").empty());
}

TEST_F(ApplicationTest, AWindowOpenedAgainStartsNoUninstallBesideTheOneOfTheFirst) {
    VeltoApp app(machine.platform);
    app.setShell(shell);
    app.windowOpened(page);
    const nlohmann::json message{
        {"type", "uninstall"},
        {"payload", {{"path", "/Applications/Gone.app"}, {"paths", nlohmann::json::array()}}}};
    page->post(message);
    EXPECT_TRUE(page->calls("toast").empty());
    app.windowClosed();
    const auto second = std::make_shared<FakeWebView>();
    app.windowOpened(second);
    second->post(message);
    ASSERT_EQ(second->calls("toast").size(), 1u);
    EXPECT_THAT(second->calls("toast").front(), testing::HasSubstr("is already running"));
}

}  // namespace
}  // namespace velto
