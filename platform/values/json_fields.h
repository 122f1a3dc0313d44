#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include <nlohmann/json.hpp>

namespace velto {

/// A required field of a stored record. Stricter than the library, which would read a number as a
/// boolean's type or cut a real down to an integer: a missing or mistyped field throws
/// nlohmann::json::exception.
template <typename Type>
Type field(const nlohmann::json& object, const char* key) {
    const nlohmann::json& value = object.at(key);
    bool fits = false;
    if constexpr (std::is_same_v<Type, bool>) {
        fits = value.is_boolean();
    } else if constexpr (std::is_same_v<Type, double>) {
        fits = value.is_number();
    } else if constexpr (std::is_same_v<Type, std::int64_t>) {
        fits = value.is_number_integer();
    } else {
        fits = true;  // texts and containers: the library checks them
    }
    if (!fits) {
        throw nlohmann::json::type_error::create(302, std::string("wrong type of ") + key, &value);
    }
    return value.get<Type>();
}

/// A required list, each element read by `read`.
template <typename Read>
auto listFrom(const nlohmann::json& list, Read read) {
    if (!list.is_array()) {
        throw nlohmann::json::type_error::create(302, "not a list", &list);
    }
    std::vector<decltype(read(list))> records;
    records.reserve(list.size());
    for (const nlohmann::json& element : list)
        records.push_back(read(element));
    return records;
}

/// The same for a field of an object.
template <typename Read>
auto listFrom(const nlohmann::json& object, const char* key, Read read) {
    return listFrom(object.at(key), read);
}

/// True unless the value holds a number that JSON cannot express.
bool isFinite(const nlohmann::json& value);

}  // namespace velto
