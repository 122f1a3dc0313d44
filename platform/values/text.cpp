#include "platform/values/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <utility>

#include <fmt/format.h>

namespace velto {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";  // U+FFFD

/// Calls `visit` with each well-formed sequence, and with an empty text for each bad byte.
template <typename Visit>
void forEachSequence(std::string_view bytes, Visit visit) {
    while (!bytes.empty()) {
        const std::size_t length = utf8SequenceLength(bytes);
        visit(bytes.substr(0, length));
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
}

char32_t codePoint(std::string_view sequence) {
    constexpr std::array<std::uint8_t, 5> leadingBits{0, 0x7F, 0x1F, 0x0F, 0x07};
    auto value = static_cast<char32_t>(static_cast<std::uint8_t>(sequence.front()) &
                                       leadingBits[sequence.size()]);
    for (const char each : sequence.substr(1))
        value = value << 6 | (static_cast<std::uint8_t>(each) & 0x3F);
    return value;
}

/// True for what a terminal or a viewer obeys instead of showing it.
bool movesOnScreen(char32_t letter) {
    constexpr std::array<std::pair<char32_t, char32_t>, 6> ranges{{
        {0x00, 0x1F},      // control characters, line ends among them
        {0x7F, 0x9F},      // delete, and the control characters of eight bits
        {0x061C, 0x061C},  // marks of direction, here and below
        {0x200E, 0x200F},
        {0x2028, 0x202E},  // line and paragraph separator; embeddings and overrides
        {0x2066, 0x2069},  // isolates
    }};
    return std::ranges::any_of(
        ranges, [letter](auto range) { return letter >= range.first && letter <= range.second; });
}

/// True for control characters of ASCII, the next line, and separators of lines and paragraphs.
bool breaksLine(std::string_view sequence) {
    const char32_t letter = codePoint(sequence);
    return letter < 0x20 || letter == 0x7F || letter == 0x85 || letter == 0x2028 ||
           letter == 0x2029;
}

}  // namespace

std::size_t utf8SequenceLength(std::string_view bytes) {
    const auto byte = [&](std::size_t index) {
        return index < bytes.size() ? static_cast<std::uint8_t>(bytes[index]) : std::uint8_t{0};
    };
    const auto continues = [&](std::size_t index, std::uint8_t low = 0x80,
                               std::uint8_t high = 0xBF) {
        return byte(index) >= low && byte(index) <= high;
    };
    if (bytes.empty()) return 0;
    const std::uint8_t first = byte(0);
    if (first < 0x80) return 1;
    if (first < 0xC2) return 0;
    if (first < 0xE0) return continues(1) ? 2 : 0;
    if (first < 0xF0) {
        const std::uint8_t low = first == 0xE0 ? 0xA0 : 0x80;
        const std::uint8_t high = first == 0xED ? 0x9F : 0xBF;
        return continues(1, low, high) && continues(2) ? 3 : 0;
    }
    if (first < 0xF5) {
        const std::uint8_t low = first == 0xF0 ? 0x90 : 0x80;
        const std::uint8_t high = first == 0xF4 ? 0x8F : 0xBF;
        return continues(1, low, high) && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
}

bool isValidUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t length = utf8SequenceLength(bytes);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string validUtf8(std::string_view bytes) {
    if (isValidUtf8(bytes)) return std::string(bytes);
    std::string text;
    text.reserve(bytes.size() + replacement.size());
    forEachSequence(bytes, [&](std::string_view sequence) {
        text += sequence.empty() ? replacement : sequence;
    });
    return text;
}

std::string lowerCasedAscii(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower)
        letter = lowerCasedAscii(letter);
    return lower;
}

std::size_t occurrences(std::string_view text, std::string_view word) {
    std::size_t count = 0;
    for (std::size_t at = text.find(word); at != std::string_view::npos;
         at = text.find(word, at + word.size()))
        ++count;
    return count;
}

std::string singleLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    forEachSequence(text, [&](std::string_view sequence) {
        if (sequence.empty()) {
            line += replacement;
        } else if (sequence == "\\") {
            line += '/';
        } else if (breaksLine(sequence)) {
            line += ' ';
        } else {
            line += sequence;
        }
    });
    return line;
}

std::string logText(std::string_view text, std::size_t mostBytes) {
    constexpr std::string_view ellipsis = "…";
    std::string line;
    line.reserve(std::min(text.size(), mostBytes));
    bool isWhole = true;
    std::size_t wholeWithEllipsis = 0;  // how much of the line leaves room for it
    forEachSequence(text, [&](std::string_view sequence) {
        if (!isWhole) return;
        if (sequence.empty()) {
            line += replacement;
        } else if (const char32_t letter = codePoint(sequence); movesOnScreen(letter)) {
            fmt::format_to(std::back_inserter(line), "\\u{:04x}", static_cast<unsigned>(letter));
        } else {
            line += sequence;
        }
        isWhole = line.size() <= mostBytes;
        if (line.size() + ellipsis.size() <= mostBytes) wholeWithEllipsis = line.size();
    });
    if (!isWhole) line.replace(wholeWithEllipsis, std::string::npos, ellipsis);
    return line;
}

std::string standardizedPath(std::string_view path) {
    if (path.empty() || path.front() != '/') return {};
    std::string result;
    while (!path.empty()) {
        path.remove_prefix(1);
        const std::string_view component = path.substr(0, path.find('/'));
        path.remove_prefix(component.size());
        if (component == "..") {
            result.resize(result.empty() ? 0 : result.rfind('/'));
        } else if (!component.empty() && component != ".") {
            result += '/';
            result += component;
        }
    }
    return result.empty() ? "/" : result;
}

std::string_view lastPathComponent(std::string_view path) {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos || path.size() == 1) return path;
    return path.substr(slash + 1);
}

bool isComponent(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

std::string parentFolder(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos || path.size() == 1) return {};
    return slash == 0 ? "/" : std::string(path.substr(0, slash));
}

std::string_view extensionOf(std::string_view name) {
    const std::size_t stop = name.rfind('.');
    if (stop == std::string_view::npos || stop == 0) return {};
    return name.substr(stop + 1);
}

std::string lowerCaseExtension(std::string_view name) { return lowerCasedAscii(extensionOf(name)); }

bool isAtOrBelow(std::string_view path, std::string_view folder) {
    if (folder == "/") return path.starts_with('/');
    if (!path.starts_with(folder)) return false;
    return path.size() == folder.size() || path[folder.size()] == '/';
}

}  // namespace velto
