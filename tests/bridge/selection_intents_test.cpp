#include "bridge/TrashFixture.h"
#include "support/tree_text.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using SelectionIntents = TrashFixture;

TEST_F(SelectionIntents, SaysWhatCanGoAndWhyNotTheRestAndTouchesNothing) {
    const std::string mail = machine.home.text("Documents/MailMerge.docx", "x").path();
    const std::string link = machine.home.path("linked");
    machine.home.link("linked", machine.home.path("Movies"));
    const std::string held = machine.home.text(dataFolder + "/Trash/x", "x").path();
    ask("checkSelection",
        {{"paths", {mail, film, link, held, archive, "/etc/hostname"}}, {"request", 7}});

    const json answer = lastArgument(*page, "onSelection");
    EXPECT_EQ(answer["request"], 7);
    EXPECT_EQ(answer["movable"], json({film, archive}));
    std::vector<std::string> reasons;
    for (const json& stay : answer["stays"])
        reasons.push_back(stay["path"].get<std::string>() + " " +
                          stay["reason"].get<std::string>());
    EXPECT_THAT(reasons, ElementsAre(mail + " protected", link + " link", held + " trash",
                                     "/etc/hostname outside"));
    EXPECT_TRUE(machine.home.exists("Movies/film.mov"));
    EXPECT_THAT(trash.operations(), IsEmpty());
    EXPECT_EQ(count("toast") + count("onTrashChanged") + count("setState"), 0u);
}

TEST_F(SelectionIntents, WhatIsGoneIsListedNoMore) {
    machine.platform.files->removeAll(film);
    ask("checkSelection", {{"paths", {film, archive}}, {"request", 8}});

    const json answer = lastArgument(*page, "onSelection");
    EXPECT_EQ(answer["movable"], json({archive}));
    EXPECT_EQ(answer["stays"][0]["reason"], "gone");
    EXPECT_THAT(answer["stays"][0]["detail"].get<std::string>(), HasSubstr("No such file"));
    EXPECT_THAT(shownFiles(), ElementsAre("archive.zip"));
    EXPECT_EQ(count("onTrashChanged"), 0u);
}

TEST_F(SelectionIntents, OnlyAWholeQuestionIsAnswered) {
    ask("checkSelection");
    ask("checkSelection", {{"paths", {film}}});
    ask("checkSelection", {{"paths", json::array()}, {"request", 1}});
    ask("checkSelection", {{"paths", {film, 7}}, {"request", 1}});
    EXPECT_EQ(count("onSelection"), 0u);
}

}  // namespace
}  // namespace velto
