#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Locale.h"

/// How an application's name is taken apart to look for what it has left.
namespace velto {

/// Without white space at both ends (Unicode's).
std::string_view trimmed(std::string_view text);

/// Letters of a text, as far as Unicode's code points are letters.
std::size_t length(std::string_view text);

/// The pieces between name separators (space, hyphen-minus, low line, middle dot, parentheses, full
/// stop), none of them empty.
std::vector<std::string_view> namePieces(std::string_view name);

/// The name of a folder that no single application may claim.
bool isGenericFolderName(std::string_view name);
/// A word that many applications carry in their names.
bool isGenericWord(std::string_view word);
/// Either of them in any mixture of large and small letters (ASCII).
bool isGenericInAnyCase(std::string_view text);

/// The name as a key: trimmed, at least three letters, no generic folder name. Nothing otherwise,
/// and nothing for what cannot be the name of a file: it would lead elsewhere.
std::optional<std::string> nameKey(std::string_view name);

/// True for a text that names exactly one entry of a folder.
bool isEntryName(std::string_view text);

/// Lower-cased pieces of the name of at least four letters that are in neither generic set.
std::vector<std::string> nameTokens(std::string_view name, const Locale& locale);

/// The second piece of the name, lower-cased; nothing when there is none.
std::optional<std::string> secondWord(std::string_view name, const Locale& locale);

}  // namespace velto
