#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace velto {

/// How deep lists and objects may lie in each other: several times what any format of the program
/// needs.
inline constexpr int deepestJson = 64;

/// The value of a JSON text from outside the program, be it a file that it has written itself.
/// Throws nlohmann::json::exception when the text is none, and when it is nested deeper than
/// `deepestJson`: a deep value takes a function call per level when it is copied, written or
/// destroyed, and enough of them end the program.
nlohmann::json parseJson(std::string_view text);

/// Takes each object inside a value as soon as it is read, and those inside it before: `members`
/// are the names of the members that lead to it from the outermost value, empty where a list does.
/// So ["items", ""] is an object of the list that is the outermost object's member "items". What it
/// throws ends the reading.
using TakeObject =
    std::function<void(const std::vector<std::string>& members, nlohmann::json& object)>;

/// The same, with the objects inside handed over one by one and left out of what holds them: a long
/// list never stands in memory as a value. Of a member that is named twice the earlier one is
/// handed over too.
nlohmann::json parseJson(std::string_view text, const TakeObject& take);

/// The same for a text that may be anything, as what a page posts: nothing where the other throws.
std::optional<nlohmann::json> tryParseJson(std::string_view text);

}  // namespace velto
