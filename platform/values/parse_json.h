#pragma once

#include <optional>
#include <string_view>

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

/// The same for a text that may be anything, as what a page posts: nothing where the other throws.
std::optional<nlohmann::json> tryParseJson(std::string_view text);

}  // namespace velto
