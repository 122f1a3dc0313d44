#pragma once

#include <string>
#include <string_view>

#include "platform/Locale.h"

/// Names on a freedesktop home, where applications are called after what they do.
namespace velto {

/// True for a name that says what something is and not whose (Calendar, Mail, Fonts, ...), in any
/// mixture of large and small letters (ASCII): a folder so named belongs to no single application.
bool isCommonWord(std::string_view name);

/// True for an identifier that can only be one application's: reverse domain names of at least
/// three parts, and other names that are no common word.
bool isOwnIdentifier(std::string_view identifier);

/// A name as it is compared with others: small letters, without the separators of words and without
/// a version at the end ("Android Studio 2024.1" and "android-studio" are the same).
std::string comparable(std::string_view name, const Locale& locale);

}  // namespace velto
