#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace velto {

using DefaultsValue = std::variant<bool, std::int64_t, double, std::string>;

/// The user's settings store: typed values by key. Main thread and work items may call it; each
/// call is atomic. A value that cannot be stored is kept for the life of the process.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// The stored value, nothing when the key is absent or holds another kind of value (a list).
    virtual std::optional<DefaultsValue> value(const std::string& key) const = 0;
    virtual void setValue(const std::string& key, DefaultsValue value) = 0;
    virtual void remove(const std::string& key) = 0;
};

}  // namespace velto
