#include "cleaning/preview/text_beginning.h"

#include <algorithm>

#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view replacement = "\xEF\xBF\xBD";

bool isOfNoText(char letter) {
    constexpr char escape = 0x1B;  // of colours in logs
    const auto code = static_cast<unsigned char>(letter);
    const bool isSpace = code >= '\b' && code <= '\r';
    return (code < ' ' && !isSpace && letter != escape) || code == 0x7F;
}

/// Without the beginning of a character whose end is not there.
std::string_view withoutHalfCharacter(std::string_view text) {
    for (std::size_t back = 1; back <= std::min<std::size_t>(3, text.size()); ++back) {
        const auto code = static_cast<unsigned char>(text[text.size() - back]);
        if (code < 0x80) break;
        if (code < 0xC0) continue;
        const std::size_t length = code < 0xE0 ? 2 : code < 0xF0 ? 3 : 4;
        if (length > back) text.remove_suffix(back);
        break;
    }
    return text;
}

}  // namespace

std::optional<std::string> textBeginning(std::string_view head, bool isWhole) {
    if (head.starts_with(byteOrderMark)) head.remove_prefix(byteOrderMark.size());
    if (!isWhole) head = withoutHalfCharacter(head);
    if (std::ranges::any_of(head, isOfNoText)) return std::nullopt;
    std::string text = validUtf8(head);
    const std::size_t bad = occurrences(text, replacement) - occurrences(head, replacement);
    if (bad * 10 > head.size()) return std::nullopt;
    return text;
}

}  // namespace velto
