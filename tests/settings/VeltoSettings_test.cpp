#include "settings/VeltoSettings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "settings/AppLanguage.h"
#include "support/fakes.h"

namespace velto {
namespace {

struct SettingsTest : testing::Test {
    FakeUserDefaults defaults;
    FakeLocale locale;
    VeltoSettings settings{defaults, locale};
};

TEST_F(SettingsTest, WeeklyOfAnOlderVersionMeansWeekends) {
    defaults.values[defaultsKey::frequency] = std::string("weekly");
    EXPECT_EQ(settings.frequency(), "weekends");
}

TEST_F(SettingsTest, AnUnknownOrMissingFrequencyIsDaily) {
    EXPECT_EQ(settings.frequency(), "daily");
    defaults.values[defaultsKey::frequency] = std::string("hourly");
    EXPECT_EQ(settings.frequency(), "daily");
    defaults.values[defaultsKey::frequency] = std::int64_t{3};
    EXPECT_EQ(settings.frequency(), "daily");
}

TEST_F(SettingsTest, KnownFrequenciesStay) {
    for (const char* frequency : {"daily", "weekends", "monthly"}) {
        settings.setFrequency(frequency);
        EXPECT_EQ(settings.frequency(), frequency);
    }
    settings.setFrequency("weekly");
    EXPECT_EQ(std::get<std::string>(defaults.values[defaultsKey::frequency]), "daily");
}

TEST_F(SettingsTest, ARetentionOfNothingOrLessKeepsThirtyDays) {
    EXPECT_EQ(settings.retention(), 30);
    settings.setRetention(0);
    EXPECT_EQ(settings.retention(), 30);
    settings.setRetention(-5);
    EXPECT_EQ(settings.retention(), 30);
    settings.setRetention(7);
    EXPECT_EQ(settings.retention(), 7);
}

TEST_F(SettingsTest, ADamagedRetentionKeepsThirtyDays) {
    defaults.values[defaultsKey::retentionDays] = std::string("siete");
    EXPECT_EQ(settings.retention(), 30);
    defaults.values[defaultsKey::retentionDays] = std::nan("");
    EXPECT_EQ(settings.retention(), 30);
}

TEST_F(SettingsTest, ARetentionLongerThanAnyCalendarIsNeverReadAsAShorterOne) {
    settings.setRetention(1'000'000);
    EXPECT_EQ(settings.retention(), 1'000'000);
    settings.setRetention(1'000'001);
    EXPECT_EQ(settings.retention(), 1'000'000);
    settings.setRetention(std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(settings.retention(), 1'000'000);
    for (const double stored : {1e6 + 1, 1e300, std::numeric_limits<double>::infinity()}) {
        defaults.values[defaultsKey::retentionDays] = stored;
        EXPECT_EQ(settings.retention(), 1'000'000) << stored;
    }
}

TEST_F(SettingsTest, MexicanSpanishIsSpanishAndFrenchIsEnglish) {
    defaults.values[defaultsKey::language] = std::string("es-MX");
    EXPECT_EQ(settings.language(), "es");
    defaults.values[defaultsKey::language] = std::string("fr");
    EXPECT_EQ(settings.language(), "en");
}

TEST_F(SettingsTest, WithoutAStoredLanguageTheSystemsFirstDecides) {
    locale.languages = {"es-ES", "en-GB"};
    EXPECT_EQ(settings.language(), "es");
    locale.languages = {"de-DE", "es-ES"};
    EXPECT_EQ(settings.language(), "en");
    locale.languages = {};
    EXPECT_EQ(settings.language(), "en");
}

TEST_F(SettingsTest, ALanguageIsStoredAsOneOfTheTwo) {
    settings.setLanguage("es-419");
    EXPECT_EQ(std::get<std::string>(defaults.values[defaultsKey::language]), "es");
    settings.setLanguage("ca");
    EXPECT_EQ(std::get<std::string>(defaults.values[defaultsKey::language]), "en");
}

TEST_F(SettingsTest, RulesAreOnExceptDuplicatesUntilSwitched) {
    const std::map<std::string, bool> fresh{
        {"systemTrash", true}, {"oldDownloads", true}, {"caches", true}, {"duplicates", false}};
    EXPECT_EQ(settings.rules(), fresh);
    settings.setRule("caches", false);
    settings.setRule("duplicates", true);
    EXPECT_FALSE(settings.rules().at("caches"));
    EXPECT_TRUE(settings.rules().at("duplicates"));
    defaults.values["velto.rule.caches"] = std::string("no");
    EXPECT_TRUE(settings.rules().at("caches")) << "a value that is no switch counts as none";
}

TEST_F(SettingsTest, TheRecordGathersEverything) {
    settings.setRetention(14);
    settings.setAutoMaintenance(true);
    settings.setFrequency("monthly");
    settings.setLanguage("es");
    const Settings record = settings.record();
    EXPECT_EQ(record.retention, 14);
    EXPECT_TRUE(record.autoMaintenance);
    EXPECT_EQ(record.frequency, "monthly");
    EXPECT_EQ(record.language, "es");
    EXPECT_EQ(record.rules->size(), 4u);
}

TEST_F(SettingsTest, ChangingTheLanguageStoresItAndTellsObservers) {
    AppLanguage language(settings);
    int told = 0;
    language.observe([&] { ++told; });
    EXPECT_EQ(language.code(), "en");
    language.setCode("es-AR");
    EXPECT_EQ(language.code(), "es");
    EXPECT_EQ(language.text("Hola", "Hello"), "Hola");
    EXPECT_EQ(settings.language(), "es");
    EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace velto
