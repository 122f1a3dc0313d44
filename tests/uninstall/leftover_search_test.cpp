#include <gmock/gmock.h>

#include "UninstallWorld.h"
#include "support/WatchedFiles.h"
#include "uninstall/Leftovers.h"

namespace velto {
namespace {

using Leftovers::Candidate;
using Leftovers::Conf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class LeftoverSearchTest : public testing::Test, protected UninstallWorld {
protected:
    std::vector<std::string> found(const std::string& name, const std::string& root,
                                   int limit = Leftovers::searchLimit) {
        std::vector<std::string> paths;
        for (const Candidate& candidate : Leftovers::searchByName(files, *machine.platform.locale,
                                                                  name, {root}, "support", limit)) {
            EXPECT_EQ(
                candidate,
                (Candidate{.path = candidate.path, .cat = "support", .conf = Conf::possible}));
            paths.push_back(candidate.path);
        }
        return paths;
    }
    std::string support() const { return home.path("Library/Application Support"); }

    WatchedFiles files{std::make_unique<PosixFileManager>()};
};

// The search by name

TEST_F(LeftoverSearchTest, AFolderNamedLikeTheApplicationIsFound) {
    library("Application Support/FOOBAR/x");
    EXPECT_THAT(found("Foobar Pro", support()), ElementsAre(support() + "/FOOBAR"));
}

TEST_F(LeftoverSearchTest, AFolderOneLevelDeeperIsFound) {
    library("Application Support/Acme/Foobar/x");
    library("Application Support/Acme/Inner/Foobar/x");
    EXPECT_THAT(found("Foobar", support()), ElementsAre(support() + "/Acme/Foobar"));
}

TEST_F(LeftoverSearchTest, OneLevelDeeperAFileCountsToo) {
    library("Application Support/Acme/foobar");
    library("Application Support/foobar", "a file at the top does not");
    EXPECT_THAT(found("Foobar", support()), ElementsAre(support() + "/Acme/foobar"));
}

TEST_F(LeftoverSearchTest, TheSecondWordsFolderIsSearchedAndNotTaken) {
    library("Application Support/widgets/foobar/x");
    library("Application Support/widgets/other/x");
    EXPECT_THAT(found("Acme Widgets Foobar", support()),
                ElementsAre(support() + "/widgets/foobar"));
    library("Application Support/Studio/Foobar/x");
    EXPECT_THAT(found("Acme Studio Foobar", support()), Contains(support() + "/Studio/Foobar"));
}

TEST_F(LeftoverSearchTest, ANameWithoutTokensFindsNothingAndOpensNothing) {
    library("Application Support/Foo/x");
    EXPECT_THAT(found("Foo Pro", support()), IsEmpty());
    EXPECT_THAT(files.looked(), IsEmpty());
}

TEST_F(LeftoverSearchTest, TheFirstHiddenEntryEndsTheSearch) {
    library("Application Support/foobar/x");
    library("Application Support/acme/foobar/x");
    library("Application Support/.DS_Store");
    files.listingOf[support()] = {"acme", ".DS_Store", "foobar"};
    EXPECT_THAT(found("Foobar", support()), ElementsAre(support() + "/acme/foobar"));
    files.listingOf[support()] = {".DS_Store", "acme", "foobar"};
    EXPECT_THAT(found("Foobar", support()), IsEmpty());
    files.listingOf[support()] = {"acme", "foobar", ".DS_Store"};
    EXPECT_THAT(found("Foobar", support()),
                ElementsAre(support() + "/acme/foobar", support() + "/foobar"));
}

TEST_F(LeftoverSearchTest, ThreeHundredOpenedFoldersEndTheSearch) {
    std::vector<std::string> names;
    for (int number = 0; number < 300; ++number) {
        names.push_back("folder" + std::to_string(1000 + number));
        home.folder("Library/Application Support/" + names.back());
    }
    library("Application Support/" + names.back() + "/foobar/x");
    library("Application Support/last/foobar/x");
    library("Application Support/foobar/x");
    names.push_back("last");
    names.push_back("foobar");
    files.listingOf[support()] = names;
    EXPECT_THAT(found("Foobar", support()), ElementsAre(support() + "/folder1299/foobar"));
    EXPECT_THAT(found("Foobar", support(), 301),
                ElementsAre(support() + "/folder1299/foobar", support() + "/last/foobar"));
    // What is taken whole is not opened and does not count.
    files.listingOf[support()] = {"foobar", "last"};
    EXPECT_THAT(found("Foobar", support(), 1),
                ElementsAre(support() + "/foobar", support() + "/last/foobar"));
}

TEST_F(LeftoverSearchTest, UnreadableRootsAndFoldersContributeNothing) {
    library("Application Support/acme/foobar/x");
    library("Application Support/foobar/x");
    files.listingOf[support()] = {"acme", "foobar"};
    files.unlistable.insert(support() + "/acme");
    EXPECT_THAT(found("Foobar", support()), ElementsAre(support() + "/foobar"));
    EXPECT_THAT(found("Foobar", home.path("nothing")), IsEmpty());
}

// Expansion

TEST_F(LeftoverSearchTest, APrefixStandsForTheFirstTwelveEntriesByName) {
    for (char letter = 'o'; letter >= 'a'; --letter)
        library(std::string("Logs/Foo_") + letter);
    library("Logs/Foobar");
    library("Logs/foo_a");
    const Candidate candidate{.path = home.path("Library/Logs/Foo_"),
                              .cat = "logs",
                              .conf = Conf::possible,
                              .prefix = true};
    std::vector<std::string> names{"Foobar", "foo_a"};
    for (char letter = 'o'; letter >= 'a'; --letter)
        names.push_back(std::string("Foo_") + letter);
    files.listingOf[home.path("Library/Logs")] = names;
    const auto expanded = Leftovers::expand(files, candidate);
    ASSERT_EQ(expanded.size(), 12u);
    EXPECT_EQ(expanded.front(),
              (Candidate{
                  .path = home.path("Library/Logs/Foo_a"), .cat = "logs", .conf = Conf::possible}));
    EXPECT_EQ(expanded.back().path, home.path("Library/Logs/Foo_l"));
    EXPECT_EQ(Leftovers::expand(files, candidate, 2).size(), 2u);
}

TEST_F(LeftoverSearchTest, APlainCandidateIsItself) {
    const Candidate candidate{.path = "/nothing", .cat = "logs", .admin = true};
    EXPECT_THAT(Leftovers::expand(files, candidate), ElementsAre(candidate));
}

TEST_F(LeftoverSearchTest, APrefixWithoutAFolderOrWithoutLettersStandsForNothing) {
    for (const char* path : {"noslash", "/atroot", "", "/"}) {
        EXPECT_THAT(Leftovers::expand(files, {.path = path, .prefix = true}), IsEmpty()) << path;
    }
    EXPECT_THAT(Leftovers::expand(files, {.path = home.path("Library/"), .prefix = true}),
                IsEmpty());
    EXPECT_THAT(Leftovers::expand(files, {.path = home.path("nothing/a"), .prefix = true}),
                IsEmpty());
}

}  // namespace
}  // namespace velto
