#pragma once

#include <string>
#include <string_view>

namespace velto {

/// Appends a path or a name as a JSON string, in the form of `pathText`. What nearly all names are
/// costs no more than a look at each byte.
void appendPathJson(std::string& json, std::string_view path);

/// JSON (without blanks, as `writeJson` makes it) as an expression of a script. A long one becomes
/// a text that the page parses: the engine reads JSON in a small part of the time that it takes to
/// compile the same as a script, and answers nobody meanwhile.
std::string scriptLiteral(std::string json);

}  // namespace velto
