#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velto {

/// The text that a file begins with, in UTF-8 without a byte order mark; what is no UTF-8 shows as
/// U+FFFD. Nothing for what is no text: a NUL byte or another control character of no text in it,
/// or more than a tenth of it no UTF-8. `head` may end within a character unless it `isWhole`.
/// Pure.
std::optional<std::string> textBeginning(std::string_view head, bool isWhole);

}  // namespace velto
