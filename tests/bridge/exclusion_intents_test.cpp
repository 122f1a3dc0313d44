// Choosing a folder that stays out of the analysis.

#include "bridge/BridgeFixture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

struct ExclusionChoice : BridgeFixture {
    void SetUp() override {
        machine.home.folder("Projects/old");
        open();
        page->scripts.clear();
    }

    void choose(const std::string& folder) {
        shell.chosenFolder = folder;
        post("chooseExclusion");
    }
};

TEST_F(ExclusionChoice, TheChosenFolderStaysOutAndThePageIsTold) {
    const std::string folder = machine.home.path("Projects/old");
    choose(folder);
    ASSERT_THAT(shell.folderQuestions, SizeIs(1));
    EXPECT_EQ(shell.folderQuestions[0].title, "Choose a folder to leave out of the analysis");
    EXPECT_EQ(shell.folderQuestions[0].accept, "Exclude");
    EXPECT_EQ(shell.folderQuestions[0].startAt, machine.home.path());
    EXPECT_THAT(exclusions.paths(), ElementsAre(folder));
    EXPECT_THAT(page->calls("toast"), ElementsAre(HasSubstr("\"Excluded from the analysis\"")));
    EXPECT_THAT(page->calls("onExclusions"), ElementsAre(HasSubstr(folder)));
    EXPECT_THAT(page->calls("onExcluded"), ElementsAre(HasSubstr(folder)));
}

TEST_F(ExclusionChoice, InSpanish) {
    language.setCode("es");
    choose("/");
    EXPECT_EQ(shell.folderQuestions[0].title, "Elige una carpeta que no se analice");
    EXPECT_EQ(shell.folderQuestions[0].accept, "Excluir");
    EXPECT_EQ(shell.folderQuestions[0].decline, "Cancelar");
    EXPECT_THAT(
        page->calls("toast"),
        ElementsAre(HasSubstr("\"No se puede excluir\", \"No quedaría nada que analizar.\"")));
}

TEST_F(ExclusionChoice, WhoDeclinesChangesNothing) {
    post("chooseExclusion");
    EXPECT_THAT(exclusions.paths(), IsEmpty());
    EXPECT_THAT(page->scripts, SizeIs(1)) << "the echo alone";
}

TEST_F(ExclusionChoice, AFolderReachedThroughALinkIsLeftOutWhereItIs) {
    machine.home.link("short", machine.home.path("Projects"));
    choose(machine.home.path("short/old"));
    EXPECT_THAT(exclusions.paths(), ElementsAre(machine.home.path("Projects/old")));
}

TEST_F(ExclusionChoice, WhatMakesNoSenseIsRefusedInWords) {
    const auto refusal = [&](const std::string& folder) {
        choose(folder);
        EXPECT_THAT(page->calls("toast").back(), HasSubstr("\"Can't be excluded\""));
        return page->calls("toast").back();
    };
    EXPECT_THAT(refusal(machine.home.path()), HasSubstr("Nothing would be left to analyze."));
    EXPECT_THAT(refusal("/"), HasSubstr("Nothing would be left to analyze."));
    EXPECT_THAT(refusal("/usr"), HasSubstr("It is outside your home folder"));
    EXPECT_THAT(refusal(machine.home.path("gone")), HasSubstr("not there any more"));
    EXPECT_THAT(exclusions.paths(), IsEmpty());
    EXPECT_EQ(count("onExclusions"), 0u);
}

TEST_F(ExclusionChoice, AnAnswerAfterTheBridgeIsGoneIsIgnored) {
    struct LateShell final : ApplicationShell {
        void activate() override {}
        Appearance appearance() const override { return Appearance::light; }
        void setAppearance(Appearance) override {}
        void keepAppearance() override {}
        void followSystemAppearance() override {}
        void confirm(const Confirmation&, std::function<void(bool)>) override {}
        void chooseFolder(const FolderQuestion&, FolderAnswer reply) override {
            answer = std::move(reply);
        }
        FolderAnswer answer;
    } late;
    auto other = std::make_shared<JSBridge>(BridgeContext{.platform = machine.platform,
                                                          .settings = settings,
                                                          .language = language,
                                                          .exclusions = exclusions,
                                                          .shell = late,
                                                          .usage = usage,
                                                          .cleanups = *cleanups,
                                                          .uninstalls = uninstalls});
    other->handle("chooseExclusion");
    other.reset();
    late.answer(machine.home.path("Projects/old"));
    EXPECT_THAT(exclusions.paths(), IsEmpty());
}

}  // namespace
}  // namespace velto
