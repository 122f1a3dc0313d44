#include "bridge/FolderFixture.h"

namespace velto {
namespace {

using FolderSearchTest = FolderFixture;

TEST_F(FolderSearchTest, ASearchFindsEveryWordWhateverItsCaseAndItsMarks) {
    home.file("work/Información 2024/a", 30'000);
    home.file("work/informacion/b", 10'000);
    home.file("other/2024/c", 10);
    analyse();
    const nlohmann::json told = search("INFORMACIÓN");
    EXPECT_EQ(told["request"], 3);
    EXPECT_EQ(told["text"], "INFORMACIÓN");
    EXPECT_EQ(told["total"], 2);
    ASSERT_EQ(told["found"].size(), 2U);
    EXPECT_EQ(told["found"][0]["path"], home.path("work/Información 2024")) << "the largest first";
    EXPECT_EQ(told["found"][0]["bytes"],
              allocated("work/Información 2024") + allocated("work/Información 2024/a"));
    EXPECT_EQ(told["found"][0]["files"], 1);
    EXPECT_GT(told["found"][0]["latest"], 1'600'000'000);
    EXPECT_EQ(search("2024 infor")["total"], 1);
    EXPECT_EQ(search("other/2024")["total"], 0) << "names, not paths";
    EXPECT_EQ(search("  ")["total"], 0);
}

TEST_F(FolderSearchTest, ASearchTellsTheTwoHundredLargestAndHowManyThereAre) {
    for (int index = 0; index < 230; ++index)
        home.folder("match " + std::to_string(index));
    home.file("match 229/large", 50'000);
    analyse();
    const nlohmann::json told = search("match");
    EXPECT_EQ(told["total"], 230);
    EXPECT_EQ(told["found"].size(), 200U);
    EXPECT_EQ(told["found"][0]["path"], home.path("match 229"));
}

TEST_F(FolderSearchTest, ASearchFindsNothingThatWasNotMeasured) {
    home.file("work/match left out/match/a", 10'000);
    home.file("Library/Application Support/Velto/Trash/match gone/a", 10'000);
    home.file("match kept/a", 10'000);
    exclusions.add(home.path("work/match left out"));
    analyse();
    const nlohmann::json told = search("match");
    EXPECT_EQ(told["total"], 1);
    ASSERT_THAT(told["found"], testing::SizeIs(1));
    EXPECT_EQ(told["found"][0]["path"], home.path("match kept"));
}

}  // namespace
}  // namespace velto
