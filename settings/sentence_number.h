#pragma once

#include <string>

namespace velto {

class AppLanguage;

/// A number as it stands in a sentence of the user's language: at most one fraction digit, with
/// that language's marks ("1,234.5" in English, "1234,5" and "12.345,6" in Spanish). What scripts
/// and files hold is written by `tenths`.
std::string sentenceNumber(double value, const AppLanguage& language);

}  // namespace velto
