#include "app/information.h"

#include <gmock/gmock.h>

#include "app/VeltoApp.h"
#include "support/fakes.h"

namespace velto {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Optional;
using testing::StartsWith;

struct InformationTest : testing::Test {
    std::optional<std::string> answer(const std::vector<std::string>& arguments) {
        return informationAskedFor(arguments, language);
    }

    FakeUserDefaults defaults;
    FakeLocale locale;
    VeltoSettings settings{defaults, locale};
    AppLanguage language{settings};
};

TEST_F(InformationTest, AnOrdinaryRunPrintsNothing) {
    EXPECT_EQ(answer({}), std::nullopt);
    EXPECT_EQ(answer({"velto", "--maintenance"}), std::nullopt);
    EXPECT_EQ(answer({"velto", "--Version", "--help=1", "-h"}), std::nullopt);
}

TEST_F(InformationTest, TheVersionIsThatOfTheBuild) {
    EXPECT_EQ(answer({"velto", "--version"}), "Velto " + std::string(versionText()) + "\n");
    EXPECT_THAT(std::string(versionText()), testing::ContainsRegex("^[0-9]+[.][0-9]+[.][0-9]+$"));
}

TEST_F(InformationTest, HelpNamesEveryOptionInTheUsersLanguage) {
    language.setCode("en");
    const auto english = answer({"velto", "--version", "--help"});
    language.setCode("es");
    const auto spanish = answer({"velto", "--help"});
    EXPECT_THAT(english, Optional(StartsWith("Velto shows")));
    EXPECT_THAT(spanish, Optional(StartsWith("Velto muestra")));
    for (const auto& text : {english, spanish}) {
        EXPECT_THAT(text, Optional(AllOf(HasSubstr("\n  --maintenance "), HasSubstr("\n  --reset "),
                                         HasSubstr("\n  --debug-log "), HasSubstr("\n  --version "),
                                         HasSubstr("\n  --help "))));
        for (const AppCommand& command : VeltoApp::commands())
            EXPECT_THAT(text, Optional(HasSubstr(std::string(command.option))));
    }
}

}  // namespace
}  // namespace velto
