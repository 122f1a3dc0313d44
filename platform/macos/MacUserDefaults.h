#pragma once

#include "platform/UserDefaults.h"

namespace velto {

/// The standard user defaults: the domain of the main bundle's identifier, or of the program's name
/// where there is no bundle.
class MacUserDefaults final : public UserDefaults {
public:
    std::optional<DefaultsValue> value(const std::string& key) const override;
    void setValue(const std::string& key, DefaultsValue value) override;
    void remove(const std::string& key) override;
};

}  // namespace velto
