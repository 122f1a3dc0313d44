#include "bridge/payload.h"

#include <cmath>

namespace velto::payload {

using nlohmann::json;

std::optional<std::string> string(const Payload& payload) {
    if (!payload || !payload->is_string()) return std::nullopt;
    return payload->get<std::string>();
}

const json* object(const Payload& payload) {
    return payload && payload->is_object() ? &*payload : nullptr;
}

const json* member(const Payload& payload, const char* key) {
    const json* container = object(payload);
    if (container == nullptr) return nullptr;
    const auto found = container->find(key);
    return found == container->end() ? nullptr : &*found;
}

std::optional<std::string> stringMember(const Payload& payload, const char* key) {
    const json* value = member(payload, key);
    if (value == nullptr || !value->is_string()) return std::nullopt;
    return value->get<std::string>();
}

std::optional<std::vector<std::string>> stringsMember(const Payload& payload, const char* key) {
    const json* value = member(payload, key);
    if (value == nullptr || !value->is_array()) return std::nullopt;
    std::vector<std::string> strings;
    strings.reserve(value->size());
    for (const json& element : *value) {
        if (!element.is_string()) return std::nullopt;
        strings.push_back(element.get<std::string>());
    }
    return strings;
}

std::optional<std::vector<std::string>> pathsMember(const Payload& payload, const char* key) {
    auto paths = stringsMember(payload, key);
    if (paths && paths->empty()) return std::nullopt;
    return paths;
}

std::optional<bool> boolMember(const Payload& payload, const char* key) {
    const json* value = member(payload, key);
    if (value == nullptr) return std::nullopt;
    if (value->is_boolean()) return value->get<bool>();
    if (value->is_number()) return value->get<double>() != 0;
    return std::nullopt;
}

std::optional<std::int64_t> integerMember(const Payload& payload, const char* key) {
    const json* value = member(payload, key);
    if (value == nullptr) return std::nullopt;
    if (value->is_boolean()) return value->get<bool>() ? 1 : 0;
    if (!value->is_number()) return std::nullopt;
    // The page has no integers of its own: what counts is that the number is whole, within the
    // range in which a real holds every whole number.
    constexpr double exactLimit = 9007199254740992;  // 2^53
    const double number = value->get<double>();
    if (number != std::trunc(number) || std::abs(number) > exactLimit) return std::nullopt;
    return static_cast<std::int64_t>(number);
}

std::string description(const Payload& payload) {
    if (!payload) return "nil";
    return payload->dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace velto::payload
