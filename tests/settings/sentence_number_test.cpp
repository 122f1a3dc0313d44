#include "settings/sentence_number.h"

#include <gtest/gtest.h>

#include "settings/AppLanguage.h"
#include "settings/VeltoSettings.h"
#include "support/fakes.h"

namespace velto {
namespace {

TEST(SentenceNumber, HasTheMarksOfTheLanguageAndOneFractionDigitAtMost) {
    FakeUserDefaults defaults;
    FakeLocale locale;
    VeltoSettings settings(defaults, locale);
    AppLanguage language(settings);
    struct Case {
        double value;
        const char* english;
        const char* spanish;
    };
    for (const Case& each :
         {Case{0, "0", "0"}, Case{0.04, "0", "0"}, Case{-0.01, "0", "0"}, Case{0.05, "0.1", "0,1"},
          Case{2, "2", "2"}, Case{1.25, "1.2", "1,2"}, Case{-1234.5, "-1,234.5", "-1234,5"},
          Case{999.95, "1,000", "1000"}, Case{1234.5, "1,234.5", "1234,5"},
          Case{12345.6, "12,345.6", "12.345,6"}, Case{1234567, "1,234,567", "1.234.567"}}) {
        language.setCode("en");
        EXPECT_EQ(sentenceNumber(each.value, language), each.english);
        language.setCode("es");
        EXPECT_EQ(sentenceNumber(each.value, language), each.spanish);
    }
}

}  // namespace
}  // namespace velto
