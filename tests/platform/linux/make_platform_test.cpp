#include <gmock/gmock.h>
#include <pwd.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <map>
#include <optional>

#include "platform/Platform.h"
#include "support/TempHome.h"
#include "support/linux/Child.h"
#include "support/made_picture.h"

namespace velto {
namespace {

/// Environment variables for the length of a test; without a value, unset.
class Variables {
public:
    explicit Variables(const std::map<std::string, std::optional<std::string>>& values) {
        for (const auto& [name, value] : values) {
            const char* const old = std::getenv(name.c_str());
            old_[name] = old == nullptr ? std::nullopt : std::optional<std::string>(old);
            set(name, value);
        }
    }
    ~Variables() {
        for (const auto& [name, value] : old_)
            set(name, value);
    }
    Variables(const Variables&) = delete;
    Variables& operator=(const Variables&) = delete;

private:
    static void set(const std::string& name, const std::optional<std::string>& value) {
        if (value) {
            setenv(name.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name.c_str());
        }
    }
    std::map<std::string, std::optional<std::string>> old_;
};

std::map<std::string, std::optional<std::string>> environmentOf(const std::string& home) {
    return {{"HOME", home},
            {"XDG_CONFIG_HOME", std::nullopt},
            {"XDG_DATA_HOME", std::nullopt},
            {"XDG_CACHE_HOME", std::nullopt}};
}

TEST(MakePlatform, ALinuxHomeGetsItsOwnLayoutWithTheFoldersThatTheUserNamed) {
    TempHome home;
    home.folder("Descargas");
    home.text(".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Descargas\"\n");
    const Variables variables(environmentOf(home.path()));
    const auto platform = makePlatform("velto");
    EXPECT_EQ(platform->layout.kind, HomeLayout::Kind::freedesktop);
    EXPECT_EQ(platform->layout.home, home.path());
    EXPECT_EQ(platform->layout.downloads, home.path("Descargas"));
    EXPECT_EQ(platform->layout.dataFolder, home.path(".local/share/Velto"));
}

TEST(MakePlatform, AMacsHomeIsRecognisedAndItsSettingsLieWhereLinuxKeepsThem) {
    for (const char* mark : {"Library/Application Support", "Library/Caches"}) {
        TempHome home;
        home.folder(mark);
        const Variables variables(environmentOf(home.path()));
        const auto platform = makePlatform("velto");
        EXPECT_EQ(platform->layout.kind, HomeLayout::Kind::macOS) << mark;
        EXPECT_EQ(platform->layout.dataFolder, home.path("Library/Application Support/Velto"));
        platform->defaults->setValue("velto.language", std::string("es"));
        EXPECT_TRUE(home.exists(".config/velto/settings.json"));
    }
}

TEST(MakePlatform, ApplicationsForAllUsersOfAMacsDiskAreLookedForOnThatDisk) {
    TempHome disk;
    disk.folder("Users/ana/Library/Caches");
    {
        const Variables variables(environmentOf(disk.path("Users/ana")));
        const auto layout = makePlatform("velto")->layout;
        EXPECT_EQ(layout.systemApplications, disk.path("Applications"));
        EXPECT_EQ(layout.systemLibrary, disk.path("Library"));
        EXPECT_EQ(layout.userApplications, disk.path("Users/ana/Applications"));
    }
    disk.folder("Library/Caches");
    const Variables variables(environmentOf(disk.path()));
    EXPECT_EQ(makePlatform("velto")->layout.systemApplications, "/Applications");
}

TEST(MakePlatform, TheConfigurationFolderMayLieElsewhereButNotAtARelativePath) {
    TempHome home;
    auto environment = environmentOf(home.path());
    environment["XDG_CONFIG_HOME"] = home.path("configuration");
    {
        const Variables variables(environment);
        makePlatform("velto")->defaults->setValue("key", true);
        EXPECT_TRUE(home.exists("configuration/velto/settings.json"));
    }
    environment["XDG_CONFIG_HOME"] = "relative";
    const Variables variables(environment);
    makePlatform("velto")->defaults->setValue("key", true);
    EXPECT_TRUE(home.exists(".config/velto/settings.json"));
}

TEST(MakePlatform, AHomeBehindALinkIsNotMistakenForAnEscape) {
    TempHome home;
    home.folder("real");
    home.link("link", "real");
    const Variables variables(environmentOf(home.path("link/")));
    const auto platform = makePlatform("velto");
    EXPECT_EQ(platform->layout.home, home.path("real"));
    EXPECT_TRUE(platform->layout.dataFolder.starts_with(home.path("real/")));
}

TEST(MakePlatform, WithoutTheVariableTheUserDatabaseKnowsTheHome) {
    const passwd* const user = getpwuid(getuid());
    if (user == nullptr || !std::filesystem::is_directory(user->pw_dir)) {
        GTEST_SKIP() << "this user has no home in the user database";
    }
    auto environment = environmentOf("");
    for (const char* unset : {"empty", "absent"}) {
        if (unset == std::string("absent")) environment["HOME"] = std::nullopt;
        const Variables variables(environment);
        EXPECT_EQ(makePlatform("velto")->layout.home, std::filesystem::canonical(user->pw_dir));
    }
}

TEST(MakePlatform, TheProgramKnowsItsOwnPlaceWhateverItWasCalled) {
    TempHome home;
    const Variables variables(environmentOf(home.path()));
    const auto platform = makePlatform("another name");
    EXPECT_EQ(platform->executablePath, std::filesystem::canonical("/proc/self/exe"));
    EXPECT_EQ(platform->bundleIdentifier, "app.velto");
    EXPECT_FALSE(platform->runsFromBundle);
}

TEST(MakePlatform, EverythingThatAMachineIsAskedForIsThere) {
    TempHome home;
    const Variables variables(environmentOf(home.path()));
    const auto platform = makePlatform("velto");
    EXPECT_TRUE(platform->log && platform->clock && platform->dispatcher && platform->files &&
                platform->directories && platform->contents && platform->volumes &&
                platform->defaults && platform->locale && platform->tools && platform->workspace &&
                platform->notifications);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(limit.rlim_cur, limit.rlim_max);
}

TEST(MakePlatform, AnApplicationOfALinuxHomeIsSeenRunningUnderItsNameAndWithItsIcon) {
    TempHome home;
    const std::string program = home.path("Applications/painter/painter");
    const Child child(home, program);
    home.text(".local/share/applications/painter.desktop",
              "[Desktop Entry]\nType=Application\nName=The Painter\nIcon=painter\nExec=" + program +
                  " %F\n");
    home.text(".local/share/icons/hicolor/32x32/apps/painter.png",
              pngPicture(32, 32, {200, 10, 10, 255}));
    const Variables variables(environmentOf(home.path()));
    const auto platform = makePlatform("velto");
    platform->processes->list();
    const auto apps = platform->processes->runningApps();
    const auto found = apps.find(static_cast<std::int32_t>(child.process()));
    ASSERT_NE(found, apps.end());
    EXPECT_EQ(found->second.name, "The Painter");
    EXPECT_EQ(found->second.bundle, "painter");
    EXPECT_THAT(platform->icons->pngDataURL(found->second.path, 28).value_or(""),
                testing::StartsWith("data:image/png;base64,"));
}

TEST(MakePlatform, WorkThatRunsAtTheEndMayStillUseTheRest) {
    TempHome home;
    const Variables variables(environmentOf(home.path()));
    auto platform = makePlatform("velto");
    Platform& machine = *platform;
    std::promise<void> begun;
    machine.dispatcher->global(QualityOfService::userInitiated, [&] {
        begun.set_value();
        machine.files->writeAtomically(machine.layout.home + "/result", "whole");
        machine.dispatcher->main([] {});
        machine.dispatcher->global(QualityOfService::utility, [] {});
    });
    begun.get_future().wait();
    platform.reset();
    EXPECT_EQ(home.read("result"), "whole");
}

TEST(MakePlatformDeathTest, AHomeThatCannotBeReadEndsTheProgramWithAClearLine) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    TempHome home;
    home.file("file", 1);
    for (const char* name : {"missing", "file"}) {
        const Variables variables(environmentOf(home.path(name)));
        EXPECT_EXIT(makePlatform("velto"), testing::ExitedWithCode(1),
                    "velto: the home folder cannot be read: .*" + std::string(name));
    }
}

}  // namespace
}  // namespace velto
