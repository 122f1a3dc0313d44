#include "bridge/AnalysisLists.h"

#include <gmock/gmock.h>

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

DiskState analysis() {
    DiskState state;
    state.files = {{.name = "a", .gb = 3, .path = "/h/Movies/a"},
                   {.name = "b", .gb = 2, .path = "/h/Movies 2/b"},
                   {.name = "c", .gb = 1, .path = "/h/c"}};
    state.dupGroups = {{.id = "x",
                        .name = "one",
                        .pairs = {{{"one", "12.5"}}, {{"two", "0.0"}}, {{"three", ""}}},
                        .paths = {"/h/one", "/h/two", "/h/three"},
                        .recommended = 1}};
    return state;
}

struct Lists : testing::Test {
    AnalysisLists lists;
    DiskState state = analysis();
    Lists() { lists.replace(state, lists.mark()); }

    std::vector<std::string> files() {
        lists.show(state);
        std::vector<std::string> names;
        for (const BigFile& file : state.files)
            names.push_back(file.name);
        return names;
    }
};

TEST_F(Lists, OnlyWhatLiesInAFolderGoesWithIt) {
    EXPECT_FALSE(lists.show(state));
    lists.noteGone({"/h/Movies/"});
    EXPECT_TRUE(lists.show(state));
    EXPECT_FALSE(lists.show(state));
    EXPECT_THAT(files(), ElementsAre("b", "c"));
    lists.noteBack({"/h/./Movies"});
    EXPECT_THAT(files(), ElementsAre("a", "b", "c"));
}

TEST_F(Lists, TheCopyThatStaysIsTheSameOne) {
    lists.noteGone({"/h/one"});
    lists.show(state);
    EXPECT_THAT(state.dupGroups[0].paths, ElementsAre("/h/two", "/h/three"));
    EXPECT_EQ(state.dupGroups[0].recommended, 0);
    EXPECT_EQ(state.dupGroups[0].pairs.size(), 2u);
    lists.noteGone({"/h/three"});
    lists.show(state);
    EXPECT_THAT(state.dupGroups, IsEmpty());
    lists.noteBack({"/h/one", "/h/three"});
    lists.show(state);
    EXPECT_EQ(state.dupGroups, analysis().dupGroups);
}

TEST_F(Lists, AnAnalysisForgetsWhatHadGoneBeforeItBegan) {
    lists.noteGone({"/h/c"});
    const auto begun = lists.mark();
    lists.noteGone({"/h/Movies/a"});
    lists.replace(analysis(), begun);
    EXPECT_THAT(files(), ElementsAre("b", "c"));
    EXPECT_TRUE(lists.hasGoneSince("/h/Movies/a", begun));
    EXPECT_FALSE(lists.hasGoneSince("/h/Movies/a", lists.mark()));
    EXPECT_FALSE(lists.hasGoneSince("/h/c", 0));
}

TEST_F(Lists, WhatLiesInAFolderHasGoneWithIt) {
    const auto begun = lists.mark();
    lists.noteGone({"/h/Caches"});
    EXPECT_TRUE(lists.hasGoneSince("/h/Caches/com.example.App", begun));
    EXPECT_FALSE(lists.hasGoneSince("/h/CachesToo/com.example.App", begun));
    EXPECT_FALSE(lists.hasGoneSince("/h/Caches/com.example.App", lists.mark()));
}

TEST_F(Lists, SizesAreTheOnesThatThePageShows) {
    EXPECT_EQ(lists.sizeOf("/h/Movies/a"), 3);
    EXPECT_EQ(lists.sizeOf("/h/one"), 12.5);
    EXPECT_EQ(lists.sizeOf("/h/two"), 0);
    EXPECT_EQ(lists.sizeOf("/h/three"), std::nullopt) << "no size was told";
    EXPECT_EQ(lists.sizeOf("/h/other"), std::nullopt);
    lists.forget();
    EXPECT_EQ(lists.sizeOf("/h/one"), std::nullopt);
}

}  // namespace
}  // namespace velto
