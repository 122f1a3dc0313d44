#pragma once

#include "platform/Locale.h"

namespace velto {

class MacLocale final : public Locale {
public:
    std::vector<std::string> preferredLanguages() const override;
    std::string decimal(double value, std::string_view localeIdentifier) const override;
    int compare(std::string_view left, std::string_view right) const override;
    std::string lowerCased(std::string_view text) const override;
};

}  // namespace velto
