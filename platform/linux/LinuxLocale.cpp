#include "platform/linux/LinuxLocale.h"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/unistr.h>

#include <algorithm>

namespace velto {
namespace {

/// The value of the first variable that is set and not empty, as setlocale(3) chooses.
std::string firstSet(const LinuxLocale::Environment& environment,
                     std::initializer_list<const char*> names) {
    for (const char* name : names) {
        if (auto value = environment(name); value && !value->empty()) return *value;
    }
    return {};
}

/// "es_MX.UTF-8@euro" is "es-MX". Empty for the locales without a language.
std::string languageTag(std::string_view locale) {
    std::string tag(locale.substr(0, locale.find_first_of(".@")));
    if (tag == "C" || tag == "POSIX") return {};
    std::replace(tag.begin(), tag.end(), '_', '-');
    return tag;
}

/// As gettext reads them: LANGUAGE is a list that goes before the locale, but counts only where the
/// locale has a language at all.
std::vector<std::string> languagesOf(const LinuxLocale::Environment& environment) {
    const std::string own = languageTag(firstSet(environment, {"LC_ALL", "LC_MESSAGES", "LANG"}));
    if (own.empty()) return {};
    std::vector<std::string> languages;
    const auto add = [&](std::string tag) {
        const bool isNew = std::find(languages.begin(), languages.end(), tag) == languages.end();
        if (!tag.empty() && isNew) languages.push_back(std::move(tag));
    };
    const std::string list = environment("LANGUAGE").value_or("");
    for (std::string_view rest = list; !rest.empty();) {
        const std::string_view item = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(rest.size(), item.size() + 1));
        add(languageTag(item));
    }
    add(own);
    return languages;
}

icu::StringPiece piece(std::string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

}  // namespace

/// A collator; its const functions may be called from several threads.
class LinuxLocale::Order {
public:
    explicit Order(const std::string& tag) {
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale locale = icu::Locale::forLanguageTag(piece(tag), status);
        if (tag.empty() || U_FAILURE(status)) locale = icu::Locale::getRoot();
        status = U_ZERO_ERROR;
        collator_.reset(icu::Collator::createInstance(locale, status));
        // Letters and accents tell names apart, case does not.
        if (U_SUCCESS(status)) collator_->setStrength(icu::Collator::SECONDARY);
    }

    int compare(std::string_view left, std::string_view right) const {
        UErrorCode status = U_ZERO_ERROR;
        if (collator_) {
            const UCollationResult result =
                collator_->compareUTF8(piece(left), piece(right), status);
            if (U_SUCCESS(status)) return result;
        }
        return left.compare(right);  // without ICU's data: the order of the bytes
    }

private:
    std::unique_ptr<icu::Collator> collator_;
};

LinuxLocale::LinuxLocale(const Environment& environment)
    : languages_(languagesOf(environment)),
      order_(std::make_unique<Order>(
          languageTag(firstSet(environment, {"LC_ALL", "LC_COLLATE", "LANG"})))) {}

LinuxLocale::~LinuxLocale() = default;

std::string LinuxLocale::decimal(double value, std::string_view localeIdentifier) const {
    UErrorCode status = U_ZERO_ERROR;
    const auto formatted =
        icu::number::NumberFormatter::withLocale(
            icu::Locale::createCanonical(std::string(localeIdentifier).c_str()))
            .precision(icu::number::Precision::maxFraction(1))
            .roundingMode(UNUM_ROUND_HALFUP)  // halves away from zero, like every figure here
            .sign(UNUM_SIGN_NEGATIVE)         // no minus before a zero
            .formatDouble(value, status);
    const icu::UnicodeString text = formatted.toString(status);
    std::string result;
    text.toUTF8String(result);
    return result;
}

int LinuxLocale::compare(std::string_view left, std::string_view right) const {
    return order_->compare(left, right);
}

std::string LinuxLocale::lowerCased(std::string_view text) const {
    std::string result;
    icu::UnicodeString::fromUTF8(piece(text)).toLower(icu::Locale::getRoot()).toUTF8String(result);
    return result;
}

}  // namespace velto
