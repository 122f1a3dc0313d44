#include "platform/folded_text.h"

#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "platform/values/text.h"

namespace velto {

std::string foldedText(std::string_view text) {
    const std::string valid = validUtf8(text);
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decomposer = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status) != 0) return valid;
    const icu::UnicodeString apart =
        decomposer->normalize(icu::UnicodeString::fromUTF8(valid), status);
    if (U_FAILURE(status) != 0) return valid;
    icu::UnicodeString bare;
    for (std::int32_t place = 0; place < apart.length();) {
        const UChar32 character = apart.char32At(place);
        if (u_charType(character) != U_NON_SPACING_MARK) bare.append(character);
        place = apart.moveIndex32(place, 1);
    }
    std::string result;
    bare.toLower(icu::Locale::getRoot()).toUTF8String(result);
    return result;
}

}  // namespace velto
