#include "platform/linux/JsonUserDefaults.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <limits>
#include <thread>

#include "support/TempHome.h"
#include "support/fakes.h"
#include "support/system_platform.h"

namespace velto {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

class JsonUserDefaultsTest : public testing::Test {
protected:
    JsonUserDefaults store() { return {*files, mover.get(), log, home.path(file)}; }
    std::optional<DefaultsValue> stored(const std::string& key) { return store().value(key); }

    static constexpr const char* file = ".config/velto/settings.json";
    TempHome home;
    FakeLog log;
    std::unique_ptr<FileManager> files = systemFileManager();
    std::unique_ptr<FileMover> mover = systemFileMover();
};

TEST_F(JsonUserDefaultsTest, SettingsOfEveryKindAreThereAtTheNextStart) {
    {
        auto defaults = store();
        defaults.setValue("bool", true);
        defaults.setValue("integer", std::int64_t{-5});
        defaults.setValue("large", std::numeric_limits<std::int64_t>::max());
        defaults.setValue("double", 1'700'000'000.25);
        defaults.setValue("whole double", 3.0);
        defaults.setValue("text", std::string("español ñ \"q\""));
    }
    EXPECT_EQ(stored("bool"), DefaultsValue(true));
    EXPECT_EQ(stored("integer"), DefaultsValue(std::int64_t{-5}));
    EXPECT_EQ(stored("large"), DefaultsValue(std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(stored("double"), DefaultsValue(1'700'000'000.25));
    EXPECT_EQ(stored("whole double"), DefaultsValue(3.0));
    EXPECT_EQ(stored("text"), DefaultsValue(std::string("español ñ \"q\"")));
    EXPECT_EQ(stored("absent"), std::nullopt);
}

TEST_F(JsonUserDefaultsTest, ARemovedSettingStaysRemoved) {
    store().setValue("key", true);
    store().remove("key");
    EXPECT_EQ(stored("key"), std::nullopt);
}

TEST_F(JsonUserDefaultsTest, ReadingWritesNothing) {
    EXPECT_EQ(stored("velto.language"), std::nullopt);
    EXPECT_FALSE(home.exists(".config"));
}

TEST_F(JsonUserDefaultsTest, ADamagedFileCountsAsEmptyAndIsReplacedAtTheNextSave) {
    for (const char* content : {"{\"velto.language\": \"es", "[1, 2]", "", "null", "\xFF\xFE"}) {
        home.text(file, content);
        EXPECT_EQ(stored("velto.language"), std::nullopt) << content;
        store().setValue("velto.frequency", std::string("daily"));
        EXPECT_EQ(stored("velto.frequency"), DefaultsValue(std::string("daily"))) << content;
    }
}

TEST_F(JsonUserDefaultsTest, WhatStandsInTheFilesPlaceIsReplacedAndWhereItLeadsIsNot) {
    home.text(file, R"({"velto.language": )" + std::string(500'000, '[') +
                        std::string(500'000, ']') + "}");
    const auto expectReplaced = [&](const char* what) {
        EXPECT_EQ(stored("velto.language"), std::nullopt) << what;
        store().setValue("velto.frequency", std::string("daily"));
        EXPECT_EQ(stored("velto.frequency"), DefaultsValue(std::string("daily"))) << what;
        std::filesystem::remove(home.path(file));
    };
    expectReplaced("deep");
    home.sparse(file, 1'000'000'000'000);
    expectReplaced("huge");
    ASSERT_EQ(mkfifo(home.path(file).c_str(), 0600), 0);
    expectReplaced("pipe");
    home.link(file, "/dev/zero");
    expectReplaced("device");
    home.link(file, "settings.json");
    expectReplaced("loop");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/zero"));
}

TEST_F(JsonUserDefaultsTest, ALinkToTheUsersOwnSettingsIsFollowedAndItsChangesAreSeen) {
    home.text("dotfiles/velto.json", R"({"velto.retentionDays": 365})");
    home.link(file, home.path("dotfiles/velto.json"));
    auto defaults = store();
    EXPECT_EQ(defaults.value("velto.retentionDays"), DefaultsValue(std::int64_t{365}));
    home.text("dotfiles/velto.json", R"({"velto.retentionDays": 3650})");
    EXPECT_EQ(defaults.value("velto.retentionDays"), DefaultsValue(std::int64_t{3650}));
}

TEST_F(JsonUserDefaultsTest, AValueOfAnotherKindReadsAsNothingAndIsKeptInTheFile) {
    home.text(file, R"({"list": [1], "object": {}, "null": null})");
    auto defaults = store();
    EXPECT_EQ(defaults.value("list"), std::nullopt);
    EXPECT_EQ(defaults.value("object"), std::nullopt);
    EXPECT_EQ(defaults.value("null"), std::nullopt);
    defaults.setValue("more", true);
    EXPECT_EQ(nlohmann::json::parse(home.read(file)),
              nlohmann::json::parse(R"({"list": [1], "object": {}, "null": null, "more": true})"));
}

TEST_F(JsonUserDefaultsTest, AnIntegerTooLargeForOneReadsAsANumber) {
    home.text(file, R"({"huge": 18446744073709551615})");
    EXPECT_EQ(stored("huge"), DefaultsValue(18446744073709551615.0));
}

TEST_F(JsonUserDefaultsTest, WhatAnotherProcessStoredIsSeenAndNotLost) {
    auto window = store();
    auto maintenance = store();
    window.setValue("velto.language", std::string("es"));
    EXPECT_EQ(maintenance.value("velto.language"), DefaultsValue(std::string("es")));
    maintenance.setValue("velto.duplicatesRound", 1'700'000'000.5);
    EXPECT_EQ(window.value("velto.duplicatesRound"), DefaultsValue(1'700'000'000.5));
    window.setValue("velto.autoMaintenance", true);
    EXPECT_EQ(stored("velto.duplicatesRound"), DefaultsValue(1'700'000'000.5));
    EXPECT_EQ(stored("velto.language"), DefaultsValue(std::string("es")));
}

TEST_F(JsonUserDefaultsTest, WhatCannotBeStoredHoldsForTheLifeOfTheProcessAndIsTriedAgain) {
    home.file(".config", 1);  // a file where the folder has to be
    auto defaults = store();
    defaults.setValue("velto.language", std::string("es"));
    defaults.setValue("gone", true);
    defaults.remove("gone");
    EXPECT_EQ(defaults.value("velto.language"), DefaultsValue(std::string("es")));
    EXPECT_EQ(defaults.value("gone"), std::nullopt);
    ASSERT_THAT(log.lines(), SizeIs(3));
    EXPECT_THAT(log.lines()[0], HasSubstr("no se pudieron guardar los ajustes"));

    std::filesystem::remove(home.path(".config"));
    defaults.setValue("velto.frequency", std::string("monthly"));
    EXPECT_EQ(stored("velto.language"), DefaultsValue(std::string("es")));
    EXPECT_EQ(stored("velto.frequency"), DefaultsValue(std::string("monthly")));
}

TEST_F(JsonUserDefaultsTest, OnlyTheUserCanReadTheFile) {
    store().setValue("key", true);
    struct stat status {};
    ASSERT_EQ(stat(home.path(file).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(JsonUserDefaultsTest, ATextThatIsNotUtf8DoesNotMakeTheFileUnreadable) {
    store().setValue("name", std::string("caf\xE9"));
    EXPECT_EQ(stored("name"), DefaultsValue(std::string("caf\xEF\xBF\xBD")));
}

TEST_F(JsonUserDefaultsTest, ThreadsThatSaveAtOnceLoseNothing) {
    auto defaults = store();
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&, number] {
            for (std::int64_t round = 0; round < 10; ++round) {
                defaults.setValue("key" + std::to_string(number), round);
                defaults.value("key0");
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int number = 0; number < 4; ++number) {
        EXPECT_EQ(stored("key" + std::to_string(number)), DefaultsValue(std::int64_t{9}));
    }
}

}  // namespace
}  // namespace velto
