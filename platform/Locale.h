#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velto {

/// What the user's language decides. Safe from every thread.
class Locale {
public:
    virtual ~Locale() = default;

    /// Language tags, the most preferred first ("es-MX", "en"); may be empty.
    virtual std::vector<std::string> preferredLanguages() const = 0;

    /// A number for a sentence: grouping and decimal mark of `localeIdentifier` ("es_ES", "en_US"),
    /// at most one fraction digit.
    virtual std::string decimal(double value, std::string_view localeIdentifier) const = 0;

    /// Negative, zero or positive: the user's own alphabetical order, case ignored.
    virtual int compare(std::string_view left, std::string_view right) const = 0;

    /// In small letters, the same in every language.
    virtual std::string lowerCased(std::string_view text) const = 0;
};

}  // namespace velto
