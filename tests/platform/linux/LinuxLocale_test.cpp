#include "platform/linux/LinuxLocale.h"

#include <gmock/gmock.h>

#include <map>

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

LinuxLocale localeOf(const std::map<std::string, std::string>& variables) {
    return LinuxLocale([variables](const std::string& name) -> std::optional<std::string> {
        const auto found = variables.find(name);
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    });
}

std::vector<std::string> languagesOf(const std::map<std::string, std::string>& variables) {
    return localeOf(variables).preferredLanguages();
}

TEST(LinuxLocale, TheLanguageOfTheDesktopIsTheFirst) {
    EXPECT_THAT(languagesOf({{"LANG", "es_MX.UTF-8"}}), ElementsAre("es-MX"));
    EXPECT_THAT(languagesOf({{"LANG", "es_ES@euro"}}), ElementsAre("es-ES"));
    EXPECT_THAT(languagesOf({{"LANG", "eo"}}), ElementsAre("eo"));
}

TEST(LinuxLocale, TheVariablesCountInTheSystemsOrder) {
    EXPECT_THAT(languagesOf({{"LANG", "en_US"}, {"LC_MESSAGES", "fr_FR"}}), ElementsAre("fr-FR"));
    EXPECT_THAT(
        languagesOf({{"LANG", "en_US"}, {"LC_MESSAGES", "fr_FR"}, {"LC_ALL", "es_ES.UTF-8"}}),
        ElementsAre("es-ES"));
    EXPECT_THAT(languagesOf({{"LANG", "en_US"}, {"LC_ALL", ""}}), ElementsAre("en-US"));
    EXPECT_THAT(languagesOf({{"LANG", "en_US.UTF-8"}, {"LANGUAGE", "ca:es_ES::en_US"}}),
                ElementsAre("ca", "es-ES", "en-US"));
}

TEST(LinuxLocale, WithoutALanguageThereIsNone) {
    EXPECT_THAT(languagesOf({}), IsEmpty());
    EXPECT_THAT(languagesOf({{"LANG", "C"}}), IsEmpty());
    EXPECT_THAT(languagesOf({{"LANG", "C.UTF-8"}}), IsEmpty());
    EXPECT_THAT(languagesOf({{"LC_ALL", "POSIX"}, {"LANG", "es_ES"}}), IsEmpty());
    EXPECT_THAT(languagesOf({{"LANG", "C"}, {"LANGUAGE", "es"}}), IsEmpty());
}

TEST(LinuxLocale, NumbersReadAsTheUsersLanguageWritesThem) {
    const LinuxLocale locale = localeOf({});
    EXPECT_EQ(locale.decimal(1234567.89, "en_US"), "1,234,567.9");
    EXPECT_EQ(locale.decimal(1234567.89, "es_ES"), "1.234.567,9");
    EXPECT_EQ(locale.decimal(12345, "es_ES"), "12.345");
    EXPECT_EQ(locale.decimal(1234, "es_ES"), "1234");  // four digits are not grouped in Spanish
    EXPECT_EQ(locale.decimal(1234, "en_US"), "1,234");
}

TEST(LinuxLocale, NumbersHaveAtMostOneFractionDigit) {
    const LinuxLocale locale = localeOf({});
    EXPECT_EQ(locale.decimal(12, "en_US"), "12");
    EXPECT_EQ(locale.decimal(12.3, "en_US"), "12.3");
    EXPECT_EQ(locale.decimal(12.34, "en_US"), "12.3");
    EXPECT_EQ(locale.decimal(0.25, "en_US"), "0.3");
    EXPECT_EQ(locale.decimal(-0.25, "es_ES"), "-0,3");
    EXPECT_EQ(locale.decimal(-0.04, "en_US"), "0");
    EXPECT_EQ(locale.decimal(0, "es_ES"), "0");
}

TEST(LinuxLocale, NamesSortAsInTheUsersDictionary) {
    const LinuxLocale spanish = localeOf({{"LANG", "es_ES.UTF-8"}});
    EXPECT_LT(spanish.compare("nube", "ñandú"), 0);
    EXPECT_LT(spanish.compare("ñandú", "oca"), 0);
    EXPECT_LT(spanish.compare("Árbol", "barco"), 0);
    const LinuxLocale swedish = localeOf({{"LANG", "sv_SE.UTF-8"}});
    EXPECT_GT(swedish.compare("ärlig", "zebra"), 0);
    EXPECT_LT(spanish.compare("ärlig", "zebra"), 0);
}

TEST(LinuxLocale, CaseDoesNotCountInTheOrderButAccentsDo) {
    for (const char* language : {"es_ES", "en_US", "C"}) {
        const LinuxLocale locale = localeOf({{"LANG", language}});
        EXPECT_EQ(locale.compare("Firefox", "firefox"), 0) << language;
        EXPECT_LT(locale.compare("firefox", "Gimp"), 0) << language;
        EXPECT_NE(locale.compare("cafe", "café"), 0) << language;
        EXPECT_EQ(locale.compare("", ""), 0);
        EXPECT_LT(locale.compare("", "a"), 0);
    }
}

TEST(LinuxLocale, AnOddLocaleOrNameStillGivesAnOrder) {
    const LinuxLocale locale = localeOf({{"LANG", "??_not a locale"}});
    EXPECT_LT(locale.compare("a", "b"), 0);
    EXPECT_NE(locale.compare("a\xFF", "b\xFE"), 0);
}

TEST(LinuxLocale, SmallLettersAreTheSameInEveryLanguage) {
    for (const char* language : {"C", "tr_TR.UTF-8"}) {
        EXPECT_EQ(localeOf({{"LANG", language}}).lowerCased("ÁGIL İ I Straße"),
                  localeOf({}).lowerCased("ÁGIL İ I Straße"));
    }
    EXPECT_EQ(localeOf({}).lowerCased("ÁGIL-I"), "ágil-i");
}

}  // namespace
}  // namespace velto
