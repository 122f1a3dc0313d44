#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velto {

/// `bytes` with every sequence that is not UTF-8 shown as U+FFFD; for names that leave the program.
std::string validUtf8(std::string_view bytes);
bool isValidUtf8(std::string_view bytes);

/// The length of the well-formed UTF-8 sequence at the start of `bytes`, 0 when there is none
/// (Unicode 15, table 3-7: no overlong forms, no surrogates, nothing above U+10FFFF).
std::size_t utf8SequenceLength(std::string_view bytes);

/// One line without backslashes, valid UTF-8: control characters and line separators become spaces,
/// a backslash becomes a slash. For texts from outside that go into a toast.
std::string singleLine(std::string_view text);

/// What a log shows of `text`: one line of valid UTF-8 on which nothing moves the cursor, colours
/// the terminal or turns the direction of writing. Control characters, line separators and marks of
/// direction are written as "\u" and four hexadecimal digits, which JSON understands too. At most
/// `mostBytes`: a longer one ends with "…".
std::string logText(std::string_view text, std::size_t mostBytes);

/// A letter of ASCII in lower case; any other byte as it is.
constexpr char lowerCasedAscii(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// The letters of ASCII in lower case, everything else as it is.
std::string lowerCasedAscii(std::string_view text);

/// How often `word`, which is not empty, stands in `text`, none overlapping another.
std::size_t occurrences(std::string_view text, std::string_view word);

/// An absolute path without doubled or trailing slashes, "." and "..", by its text alone: links
/// play no part, and ".." at the top is dropped. Empty for a path that is not absolute.
std::string standardizedPath(std::string_view path);

/// The part of a path after its last slash; a trailing slash is not a component.
std::string_view lastPathComponent(std::string_view path);

/// True for what can be the name of one entry of a folder: not empty, not "." or "..", without a
/// slash or a NUL byte.
bool isComponent(std::string_view name);

/// The folder that holds what an absolute path without a trailing slash names: all that stands
/// before the last slash, "/" for an entry of the root, empty for the root itself and for a text
/// without a slash.
std::string parentFolder(std::string_view path);

/// The text after the last full stop of a file's name, empty when there is none or when the only
/// full stop begins the name. Points into `name`.
std::string_view extensionOf(std::string_view name);

/// The same in lower case (ASCII).
std::string lowerCaseExtension(std::string_view name);

/// True when `path` is `folder` or lies below it. Exact comparison, no normalisation.
bool isAtOrBelow(std::string_view path, std::string_view folder);

}  // namespace velto
