#include "cleaning/restored_name.h"

#include <algorithm>

#include <fmt/format.h>

namespace velto {
namespace {

struct Split {
    std::string_view stem;
    std::string_view extension;  // with its full stop
};

Split split(std::string_view name) {
    const std::size_t stop = name.rfind('.');
    const bool hasExtension = stop != std::string::npos && stop != 0 && stop + 1 < name.size();
    if (!hasExtension) return {name, ""};
    return {name.substr(0, stop), name.substr(stop)};
}

/// At most that many bytes of a text, cut between two characters.
std::string_view beginning(std::string_view text, std::size_t most) {
    std::size_t end = std::min(most, text.size());
    const auto isInside = [&](std::size_t at) {
        return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
    };
    // No character has more than three bytes after its first; a name may be no UTF-8 at all.
    for (int bytes = 0; bytes < 3 && end > 0 && isInside(end); ++bytes)
        --end;
    return text.substr(0, end);
}

std::string marked(const Split& parts, std::string_view mark) {
    return fmt::format("{} ({}){}", parts.stem, mark, parts.extension);
}

/// Cuts the name so that it has at most `longest` bytes with the mark in it.
std::string marked(std::string_view name, std::string_view mark, std::size_t longest) {
    Split parts = split(name);
    std::string whole = marked(parts, mark);
    if (whole.size() <= longest) return whole;
    std::size_t excess = whole.size() - longest;
    if (parts.stem.size() <= excess) {
        parts = {name, ""};
        excess = marked(parts, mark).size() - longest;
    }
    parts.stem = beginning(parts.stem, parts.stem.size() - std::min(parts.stem.size(), excess));
    return marked(parts, mark);
}

/// Whether a candidate is the number behind this stem, or behind the beginning of it.
bool isNumbered(std::string_view candidate, const Split& parts, bool mayBeCut) {
    constexpr std::string_view opening = " (restaurado ";
    const std::string end = fmt::format("){}", parts.extension);
    if (!candidate.ends_with(end)) return false;
    candidate.remove_suffix(end.size());
    const std::size_t open = candidate.rfind(opening);
    if (open == std::string_view::npos) return false;
    const std::string_view stem = candidate.substr(0, open);
    const std::string_view number = candidate.substr(open + opening.size());
    const bool isStem = stem == parts.stem || (mayBeCut && parts.stem.starts_with(stem));
    return isStem && !number.empty() &&
           std::ranges::all_of(number, [](char digit) { return digit >= '0' && digit <= '9'; });
}

}  // namespace

std::string restoredName(std::string_view name, int number, std::size_t longest) {
    return marked(name, fmt::format("restaurado {}", number), longest);
}

std::string unfinishedName(std::string_view name) {
    // What volumes take, those that encrypt names among them.
    constexpr std::size_t longest = 255;
    constexpr std::size_t longestEncrypted = 143;
    return marked(name, "copia sin terminar",
                  name.size() <= longestEncrypted ? longestEncrypted : longest);
}

bool isRestoredName(std::string_view candidate, std::string_view name) {
    constexpr std::size_t shortestCut = 64;  // no volume that is in use has a lower limit
    const bool mayBeCut = candidate.size() >= shortestCut;
    return candidate == name || isNumbered(candidate, split(name), mayBeCut) ||
           (mayBeCut && isNumbered(candidate, {name, ""}, true));
}

}  // namespace velto
