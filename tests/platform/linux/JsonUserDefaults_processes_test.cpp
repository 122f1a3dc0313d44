// The window and the maintenance pass store settings at the same time.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/JsonUserDefaults.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/WatchedFileCalls.h"
#include "support/fakes.h"

namespace velto {
namespace {

/// The settings as one process sees them.
struct SettingsOwner {
    explicit SettingsOwner(const TempHome& home)
        : store(files, &files, log, home.path("velto/settings.json")) {}

    WatchedFileCalls calls;
    PosixFileManager files{calls};
    FakeLog log;
    JsonUserDefaults store;
};

TEST(SettingsOfTwoProcesses, AreAllThereInTheEnd) {
    const TempHome home;
    constexpr int processes = 3;
    constexpr int changes = 40;
    std::vector<pid_t> children;
    for (int process = 0; process < processes; ++process) {
        if (const pid_t child = fork(); child != 0) {
            children.push_back(child);
            continue;
        }
        SettingsOwner owner(home);
        for (int number = 0; number < changes; ++number) {
            owner.store.setValue(std::to_string(process) + "." + std::to_string(number), true);
        }
        _exit(owner.log.lines().empty() ? 0 : 1);
    }
    for (const pid_t child : children) {
        int status = 0;
        // Another test's child may end meanwhile.
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0) << "a setting could not be stored";
    }
    SettingsOwner owner(home);
    for (int process = 0; process < processes; ++process) {
        for (int number = 0; number < changes; ++number) {
            const std::string key = std::to_string(process) + "." + std::to_string(number);
            EXPECT_EQ(owner.store.value(key), DefaultsValue(true)) << key << " is lost";
        }
    }
}

TEST(SettingsOfTwoProcesses, AChangeThatNeitherTimeNorLengthTellsOfIsKept) {
    const TempHome home;
    SettingsOwner window(home);
    SettingsOwner maintenance(home);
    const std::string file = home.path("velto/settings.json");
    window.store.setValue("frequency", std::string("daily"));
    window.store.setValue("number", std::int64_t{1});
    const auto written = std::filesystem::last_write_time(file);
    maintenance.store.setValue("number", std::int64_t{2});
    std::filesystem::last_write_time(file, written);

    EXPECT_EQ(window.store.value("number"), DefaultsValue(std::int64_t{2}));
    window.store.setValue("frequency", std::string("monthly"));
    EXPECT_EQ(SettingsOwner(home).store.value("number"), DefaultsValue(std::int64_t{2}));
}

TEST(SettingsOfTwoProcesses, NothingIsSavedOverWhatCannotBeReadForTheMoment) {
    const TempHome home;
    SettingsOwner(home).store.setValue("velto.retentionDays", std::int64_t{365});
    SettingsOwner window(home);
    window.calls.refuses = [](const std::string& call, const char*) {
        return call == "readAt" ? EIO : 0;
    };
    window.store.setValue("velto.language", std::string("es"));
    EXPECT_EQ(window.store.value("velto.language"), DefaultsValue(std::string("es")));
    EXPECT_EQ(window.log.lines().size(), 1u);
    window.calls.refuses = nullptr;
    EXPECT_EQ(window.store.value("velto.retentionDays"), DefaultsValue(std::int64_t{365}));
    window.store.setValue("velto.frequency", std::string("monthly"));

    SettingsOwner next(home);
    EXPECT_EQ(next.store.value("velto.retentionDays"), DefaultsValue(std::int64_t{365}));
    EXPECT_EQ(next.store.value("velto.language"), DefaultsValue(std::string("es")));
}

}  // namespace
}  // namespace velto
