#include <fstream>
#include <sstream>

#include <nlohmann/json.hpp>

#include "cleaning/VeltoTrashService.h"
#include "cleaning/further/FurtherFixture.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAreArray;
using testing::IsEmpty;

json treeOf(std::string_view rule) {
    std::ifstream file(std::string(VELTO_RULE_TREES) + "/" + std::string(rule) + ".json");
    if (!file) return nullptr;
    return json::parse(file);
}

std::string nameOf(const testing::TestParamInfo<RuleFile>& rule) {
    std::string name(rule.param.name);
    std::ranges::replace(name, '-', '_');
    return name;
}

/// What a rule takes of a home, and what it leaves beside that: trees/README.md tells the format.
struct RuleTree : FurtherFixture, testing::WithParamInterface<RuleFile> {
    void make(const json& tree) {
        for (const auto& [folder, files] : tree.at("takes").items()) {
            for (const json& name : files)
                file(folder + "/" + name.get<std::string>());
        }
        for (const json& path : tree.at("leaves"))
            file(path.get<std::string>());
        age(200);
        for (const json& path : tree.value("recent", json::array())) {
            file(path.get<std::string>());
            age(path.get<std::string>(), 1);
        }
    }

    void moveToTrash(const std::vector<std::string>& paths) {
        VeltoTrashService trash(*machine.platform.files, *machine.platform.mover, machine.clock,
                                machine.log, machine.platform.layout);
        std::vector<std::string> whole;
        for (const std::string& path : paths)
            whole.push_back(home().path(path));
        trash.moveToTrash(whole, "wind", {});
    }

    void check(const json& tree) {
        make(tree);
        std::vector<std::string> expected;
        for (const auto& [folder, files] : tree.at("takes").items())
            expected.push_back(folder);
        std::ranges::sort(expected);
        const auto found = groups();
        ASSERT_EQ(found.size(), 1u) << "some other rule takes what is not its own, or none does";
        EXPECT_EQ(found[0].rule->id, GetParam().name);
        EXPECT_EQ(found[0].rule->isExplained, tree.value("shows", false));
        const auto paths = taken();
        ASSERT_THAT(paths, ElementsAreArray(expected));
        if (paths.empty()) return;
        moveToTrash(paths);
        for (const std::string& path : paths)
            EXPECT_FALSE(home().exists(path)) << path;
        for (const char* kept : {"leaves", "recent"}) {
            const json list = tree.value(kept, json::array());
            for (const json& path : list)
                EXPECT_TRUE(home().exists(path.get<std::string>())) << path;
        }
        EXPECT_THAT(taken(), IsEmpty()) << "nothing is left of it";
    }
};

TEST_P(RuleTree, TakesExactlyWhatItNames) {
    const json trees = treeOf(GetParam().name);
    ASSERT_TRUE(trees.is_object()) << "trees/" << GetParam().name << ".json is missing";
    const FurtherRule rule = parseFurtherRule(GetParam().text);
    EXPECT_EQ(trees.contains("freedesktop"), rule.isForFreedesktop);
    EXPECT_EQ(trees.contains("macOS"), rule.isForMac);
    if (rule.isForFreedesktop) {
        SCOPED_TRACE("freedesktop");
        check(trees.at("freedesktop"));
        std::filesystem::remove_all(home().path());
        std::filesystem::create_directory(home().path());
    }
    if (rule.isForMac) {
        SCOPED_TRACE("macOS");
        useMacHome();
        check(trees.at("macOS"));
    }
}

INSTANTIATE_TEST_SUITE_P(Rules, RuleTree, testing::ValuesIn(ruleFiles().begin(), ruleFiles().end()),
                         nameOf);

TEST(RuleTrees, EachTreeHasItsRule) {
    for (const auto& entry : std::filesystem::directory_iterator(VELTO_RULE_TREES)) {
        if (entry.path().extension() != ".json") continue;
        const std::string name = entry.path().stem().string();
        EXPECT_NE(std::ranges::find(ruleFiles(), std::string_view(name), &RuleFile::name),
                  ruleFiles().end())
            << name;
    }
}

}  // namespace
}  // namespace velto
