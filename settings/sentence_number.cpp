#include "settings/sentence_number.h"

#include <fmt/format.h>

#include "settings/AppLanguage.h"

namespace velto {

std::string sentenceNumber(double value, const AppLanguage& language) {
    const bool isSpanish = language.isSpanish();
    std::string whole = fmt::format("{:.1f}", value);
    if (whole == "-0.0") whole = "0.0";
    const char fraction = whole.back();
    whole.resize(whole.size() - 2);
    const std::size_t first = whole.starts_with('-') ? 1 : 0;
    // Spanish leaves four digits together.
    const bool isGrouped = whole.size() - first >= (isSpanish ? 5U : 4U);
    std::string text;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        const bool isThousand = at > first && (whole.size() - at) % 3 == 0;
        if (isGrouped && isThousand) text += isSpanish ? '.' : ',';
        text += whole[at];
    }
    if (fraction != '0') {
        text += isSpanish ? ',' : '.';
        text += fraction;
    }
    return text;
}

}  // namespace velto
