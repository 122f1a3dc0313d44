#include "CleaningRulesFixture.h"

#include <stdexcept>

#include "cleaning/candidates_json.h"

namespace velto {
namespace {

using testing::ElementsAre;

/// A reader on a machine that can open nothing more.
class FailingReader final : public DirectoryReader {
public:
    std::shared_ptr<OpenFolder> open(const std::string&) override {
        throw std::runtime_error("no memory");
    }
    std::shared_ptr<OpenFolder> openChild(OpenFolder&, std::string_view) override {
        throw std::runtime_error("no memory");
    }
    bool read(OpenFolder&, const ReadOptions&, EntryList&) override { return false; }
    bool status(OpenFolder&, std::string_view, FolderStatus&) override { return false; }
};

TEST_F(CleaningRulesTest, TheTableHasItsFourRulesInOrder) {
    std::vector<std::pair<std::string, std::string>> table;
    for (const Rule& rule : rules.rules())
        table.emplace_back(rule.id, rule.name);
    EXPECT_THAT(table,
                ElementsAre(std::pair("caches", "Cachés de aplicaciones"),
                            std::pair("xcode", "Restos de Xcode"),
                            std::pair("oldDownloads", "Descargas antiguas (> 1 año sin abrir)"),
                            std::pair("installers", "Instaladores ya usados (.dmg/.pkg)")));
    EXPECT_EQ(&rules.rules(), &rules.rules());
}

TEST_F(CleaningRulesTest, ARuleThatFailsTakesNothingFromTheOthers) {
    folderOf("Library/Caches/app", 60'000'000);
    const std::string old = download("old.zip", 60'000'000, 500).path();
    const std::string installer = download("new.dmg", 60'000'000, 1).path();
    machine.platform.directories = std::make_unique<FailingReader>();
    EXPECT_THROW(discover("caches"), std::runtime_error);
    EXPECT_THAT(paths(discoverAll()), ElementsAre(installer, old));
}

TEST_F(CleaningRulesTest, OnEqualSizeTheFirstRuleKeepsAPathAndALargerFindReplacesIt) {
    // One path for two rules: a cache folder that is a file by the time the downloads are read.
    layout().caches = layout().downloads;
    const auto becomesFile = [&](const std::string& name, std::int64_t size) {
        files->attributesAt[folderOf("Downloads/" + name, 60'000'000)] = FileAttributes{
            .kind = FileKind::regular, .logicalSize = size, .modified = 1, .accessed = 1};
    };
    becomesFile("equal", 60'000'000);
    becomesFile("larger", 70'000'000);
    becomesFile("smaller", 50'000'000);
    std::vector<std::pair<std::string, double>> found;
    for (const Candidate& candidate : discoverAll()) {
        found.emplace_back(candidate.ruleID, candidate.gb);
    }
    EXPECT_THAT(found, ElementsAre(std::pair("oldDownloads", 0.07), std::pair("caches", 0.06),
                                   std::pair("caches", 0.06)));
}

TEST_F(CleaningRulesTest, EqualSizesOfDifferentRulesAreInPathOrder) {
    const std::string cache = folderOf("Library/Caches/app", 60'000'000);
    const std::string file = download("new.dmg", 60'000'000, 1).path();
    EXPECT_THAT(paths(discoverAll()), ElementsAre(file, cache));
}

TEST_F(CleaningRulesTest, DiscoveringChangesNothing) {
    folderOf("Library/Caches/app", 60'000'000, 20);
    download("old.dmg", 60'000'000, 500);
    const auto first = discoverAll();
    EXPECT_EQ(discoverAll(), first) << "looking at a file is not opening it";
}

TEST_F(CleaningRulesTest, ThePageReceivesTheFiveFieldsOfEachCandidate) {
    const std::vector<Candidate> candidates{
        {.ruleID = "caches",
         .path = "/h/\"a\"",
         .gb = 0.0500000001,
         .daysOld = 2,
         .label = "Caché de «a»."},
        {.ruleID = "installers", .path = "/h/b", .gb = 1, .daysOld = 0, .label = ""}};
    EXPECT_EQ(toJson(candidates), nlohmann::json::parse(R"([
        {"ruleID": "caches", "path": "/h/\"a\"", "gb": 0.0500000001, "daysOld": 2,
         "label": "Caché de «a»."},
        {"ruleID": "installers", "path": "/h/b", "gb": 1.0, "daysOld": 0, "label": ""}])"));
    EXPECT_EQ(toJson(std::vector<Candidate>{}).dump(), "[]");
    EXPECT_EQ(toJson({candidates[0]}).size(), 1u);
}

}  // namespace
}  // namespace velto
