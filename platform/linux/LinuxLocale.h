#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/Locale.h"

namespace velto {

/// The language of the environment's locale variables; numbers and alphabetical order by ICU.
class LinuxLocale final : public Locale {
public:
    /// Answers for the variables LANGUAGE, LC_ALL, LC_MESSAGES, LC_COLLATE and LANG; nothing for an
    /// unset one. Asked while the object is made, not later.
    using Environment = std::function<std::optional<std::string>(const std::string& name)>;

    explicit LinuxLocale(const Environment& environment);
    ~LinuxLocale() override;

    std::vector<std::string> preferredLanguages() const override { return languages_; }
    std::string decimal(double value, std::string_view localeIdentifier) const override;
    int compare(std::string_view left, std::string_view right) const override;
    std::string lowerCased(std::string_view text) const override;

private:
    class Order;

    std::vector<std::string> languages_;
    std::unique_ptr<const Order> order_;
};

}  // namespace velto
