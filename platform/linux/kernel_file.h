#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

/// What the kernel tells in its small text files (/proc, /sys). Nothing throws: a file that is not
/// there, or that refuses to be read, is nothing.

/// The content, and of one that is longer than any that is wanted the first MiB.
std::optional<std::string> kernelText(const std::string& path);

/// Without the line's end.
std::optional<std::string> kernelLine(const std::string& path);

/// A file that holds one number.
std::optional<std::int64_t> kernelNumber(const std::string& path);

/// The names in a folder, sorted; empty when it is not there.
std::vector<std::string> kernelNames(const std::string& folder);

/// Takes the next word, between blanks, from `text`; empty at the end.
std::string_view nextWord(std::string_view& text);

/// Takes the next line from `text`.
std::string_view nextLine(std::string_view& text);

/// The number that `word` begins with; 0 when it begins with none.
std::uint64_t unsignedNumber(std::string_view word);

}  // namespace velto
