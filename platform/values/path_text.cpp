#include "platform/values/path_text.h"

#include <cstdint>

#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::string_view digits = "0123456789abcdef";
constexpr std::size_t escapeLength = 3;  // U+0000 and two digits

void appendEscape(std::string& text, char character) {
    const auto byte = static_cast<std::uint8_t>(character);
    text += '\0';
    text += digits[byte >> 4];
    text += digits[byte & 0xF];
}

/// The byte of an escape at the start of `text`; nothing when there is none.
std::optional<char> escapedByte(std::string_view text) {
    if (text.size() < escapeLength || text.front() != '\0') return std::nullopt;
    const std::size_t high = digits.find(text[1]);
    const std::size_t low = digits.find(text[2]);
    if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
    return static_cast<char>(high << 4 | low);
}

}  // namespace

std::string pathText(std::string_view bytes) {
    if (isValidUtf8(bytes)) return std::string(bytes);
    std::string text;
    text.reserve(bytes.size() + 2 * escapeLength);
    while (!bytes.empty()) {
        const std::size_t length = utf8SequenceLength(bytes);
        if (length == 0) {
            appendEscape(text, bytes.front());
        } else {
            text += bytes.substr(0, length);
        }
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    return text;
}

std::string pathBytes(std::string_view text) {
    if (text.find('\0') == std::string_view::npos) return std::string(text);
    std::string bytes;
    for (std::string_view rest = text; !rest.empty();) {
        const auto byte = escapedByte(rest);
        bytes += byte.value_or(rest.front());
        rest.remove_prefix(byte ? escapeLength : 1);
    }
    // Nothing has two texts: an escape of what needs none is no escape.
    return pathText(bytes) == text ? bytes : std::string(text);
}

std::vector<std::string> pathTexts(const std::vector<std::string>& paths) {
    std::vector<std::string> texts;
    texts.reserve(paths.size());
    for (const std::string& path : paths)
        texts.push_back(pathText(path));
    return texts;
}

std::vector<std::string> pathsOfTexts(std::vector<std::string> texts) {
    for (std::string& text : texts)
        text = pathBytes(text);
    return texts;
}

}  // namespace velto
