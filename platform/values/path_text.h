#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

// A path or a name is whatever bytes the file system holds; JSON and the page hold text. What is
// UTF-8 is its own text, byte for byte. In anything else each byte that is no part of a UTF-8
// sequence is written as U+0000 and its two hexadecimal digits in small letters: no name holds a
// NUL, so no text stands for two names.

/// The text of a path or a name; always UTF-8. For files of the program's own and for the page.
std::string pathText(std::string_view bytes);

/// The bytes that a text stands for. A text that `pathText` does not make is returned as it is: its
/// NUL makes it no path, and every operation on files refuses it.
std::string pathBytes(std::string_view text);

/// The same for each of a list.
std::vector<std::string> pathTexts(const std::vector<std::string>& paths);
std::vector<std::string> pathsOfTexts(std::vector<std::string> texts);

}  // namespace velto
