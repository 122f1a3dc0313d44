#pragma once

#include <string>
#include <string_view>

namespace velto {

/// A name as a search compares it: without marks and capitals, so that "informacion" finds
/// "Información"; the same in every language, and as the page does it. What is not UTF-8 reads as
/// U+FFFD.
std::string foldedText(std::string_view text);

}  // namespace velto
