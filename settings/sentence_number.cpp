#include "settings/sentence_number.h"

#include <fmt/format.h>

#include "settings/AppLanguage.h"

namespace velto {

std::string sentenceNumber(double value, const AppLanguage& language) {
    const bool isSpanish = language.isSpanish();
    std::string text = fmt::format("{:.1f}", value);
    if (text == "-0.0") text = "0.0";
    std::string fraction = text.substr(text.size() - 1);
    text.erase(text.size() - 2);
    const std::size_t first = text.starts_with('-') ? 1 : 0;
    // Spanish leaves four digits together.
    const std::size_t shortest = isSpanish ? 5 : 4;
    if (text.size() - first >= shortest) {
        for (std::size_t at = text.size(); at > first + 3;)
            text.insert(at -= 3, isSpanish ? "." : ",");
    }
    if (fraction != "0") text += (isSpanish ? "," : ".") + fraction;
    return text;
}

}  // namespace velto
