#include "uninstall/words.h"

#include <algorithm>
#include <array>

#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::array<std::string_view, 19> genericFolderNames{{
    "Applications", "Library",   "Documents", "Downloads",   "Desktop",   "Movies", "Music",
    "Pictures",     "Public",    "Plugins",   "Preferences", "Utilities", "System", "Users",
    "Volumes",      "Developer", "Sites",     "Templates",   "Shared",
}};

constexpr std::array<std::string_view, 22> genericWords{{
    "Mini",   "Mac",    "Pro",    "Desktop", "Client", "App",   "Beta", "Helper",
    "Tool",   "Tools",  "Studio", "Home",    "Plus",   "Lite",  "Free", "Version",
    "Player", "Reader", "Editor", "Manager", "Suite",  "Cloud",
}};

constexpr std::array<std::string_view, 7> separators{" ", "-", "_", "\xC2\xB7", "(", ")", "."};

// Unicode's white space, line ends among it (property White_Space, Unicode 15).
constexpr std::array<std::string_view, 25> whiteSpace{{
    " ",
    "\t",
    "\n",
    "\v",
    "\f",
    "\r",
    "\xC2\x85",
    "\xC2\xA0",
    "\xE1\x9A\x80",
    "\xE2\x80\x80",
    "\xE2\x80\x81",
    "\xE2\x80\x82",
    "\xE2\x80\x83",
    "\xE2\x80\x84",
    "\xE2\x80\x85",
    "\xE2\x80\x86",
    "\xE2\x80\x87",
    "\xE2\x80\x88",
    "\xE2\x80\x89",
    "\xE2\x80\x8A",
    "\xE2\x80\xA8",
    "\xE2\x80\xA9",
    "\xE2\x80\xAF",
    "\xE2\x81\x9F",
    "\xE3\x80\x80",
}};

/// The length of the text of `set` at the start of `text`, 0 for none.
template <std::size_t count>
std::size_t startsWithOne(std::string_view text, const std::array<std::string_view, count>& set) {
    for (std::string_view one : set) {
        if (text.starts_with(one)) return one.size();
    }
    return 0;
}

constexpr std::size_t shortestKey = 3;
constexpr std::size_t shortestToken = 4;

}  // namespace

std::string_view trimmed(std::string_view text) {
    while (const std::size_t space = startsWithOne(text, whiteSpace))
        text.remove_prefix(space);
    const auto space = [&] {
        for (std::string_view one : whiteSpace) {
            if (text.ends_with(one)) return one.size();
        }
        return std::size_t{0};
    };
    while (const std::size_t size = space())
        text.remove_suffix(size);
    return text;
}

std::size_t length(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

std::vector<std::string_view> namePieces(std::string_view name) {
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    for (std::size_t at = 0; at <= name.size();) {
        const std::size_t separator =
            at == name.size() ? 1 : startsWithOne(name.substr(at), separators);
        if (separator == 0) {
            ++at;
            continue;
        }
        if (at > start) pieces.push_back(name.substr(start, at - start));
        at += separator;
        start = at;
    }
    return pieces;
}

bool isGenericFolderName(std::string_view name) {
    return std::ranges::find(genericFolderNames, name) != genericFolderNames.end();
}

bool isGenericWord(std::string_view word) {
    return std::ranges::find(genericWords, word) != genericWords.end();
}

bool isEntryName(std::string_view text) {
    return !text.empty() && text != "." && text != ".." &&
           text.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

bool isGenericInAnyCase(std::string_view text) {
    const auto lower = [](char letter) { return lowerCasedAscii(letter); };
    const auto is = [&](std::string_view word) {
        return std::ranges::equal(word, text, {}, lower, lower);
    };
    return std::ranges::any_of(genericFolderNames, is) || std::ranges::any_of(genericWords, is);
}

std::optional<std::string> nameKey(std::string_view name) {
    const std::string_view key = trimmed(name);
    if (length(key) < shortestKey || isGenericFolderName(key) || !isEntryName(key)) {
        return std::nullopt;
    }
    return std::string(key);
}

std::vector<std::string> nameTokens(std::string_view name, const Locale& locale) {
    std::vector<std::string> tokens;
    for (std::string_view piece : namePieces(name)) {
        const std::string_view token = trimmed(piece);
        if (length(token) < shortestToken || isGenericFolderName(token) || isGenericWord(token)) {
            continue;
        }
        tokens.push_back(locale.lowerCased(token));
    }
    return tokens;
}

std::optional<std::string> secondWord(std::string_view name, const Locale& locale) {
    const auto pieces = namePieces(name);
    return pieces.size() < 2 ? std::nullopt : std::optional(locale.lowerCased(pieces[1]));
}

}  // namespace velto
