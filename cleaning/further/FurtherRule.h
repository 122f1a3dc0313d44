#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/HomeLayout.h"

namespace velto {

/// One rule of `rules/`, as its file says; `rules/schema/rule.schema.json` tells what each field
/// means. Either `where` or `names` is empty.
struct FurtherRule {
    enum class Measure { none, files, docker, podman, snap, journal, flatpak };

    std::string id;
    bool isForFreedesktop = false;
    bool isForMac = false;
    std::vector<std::string> where;
    std::vector<std::string> names;
    std::vector<std::string> markers;
    std::vector<std::string> holds;
    int idleDays = 0;
    bool isCertain = false;
    bool isExplained = false;  // never moved: what takes it away is another program
    Measure measure = Measure::none;
    std::vector<std::string> notRunning;
    nlohmann::json record;  // the file itself, for who shows it

    bool isFor(HomeLayout::Kind kind) const {
        return kind == HomeLayout::Kind::macOS ? isForMac : isForFreedesktop;
    }
};

/// The rule in a file's text. Throws std::runtime_error or nlohmann::json::exception with the
/// reason when the text is none, has a field that no rule has, or lacks one that it must have.
FurtherRule parseFurtherRule(std::string_view text);

/// A file of `rules/` as it was when the program was built.
struct RuleFile {
    std::string_view name;  // without ".json"
    std::string_view text;
};

/// All of them, by name.
std::span<const RuleFile> ruleFiles();

/// Their rules, in the same order; what cannot be parsed is left out (the tests see to it that
/// nothing is). Made at the first call.
const std::vector<FurtherRule>& furtherRules();

}  // namespace velto
