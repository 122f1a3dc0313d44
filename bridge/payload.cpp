#include "bridge/payload.h"

#include <cmath>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "platform/values/path_text.h"
#include "platform/values/text.h"
#include "platform/values/write_json.h"

namespace velto::payload {

using nlohmann::json;
namespace {

constexpr std::size_t longestText = 48;  // bytes
constexpr std::size_t mostKeys = 12;

std::string dump(const json& value) { return writeJson(value, BadText::replaced); }

std::string shortened(std::string_view text) {
    std::string name;
    if (text.find('/') != std::string_view::npos) {
        name = "…/";
        text = lastPathComponent(text);
    }
    return '"' + name + logText(text, longestText) + '"';
}

std::string summary(const json& value, int depth);

std::string summaryOfList(const json& list, int depth) {
    if (list.empty()) return "[]";
    return fmt::format("[{}: {}{}]", list.size(), summary(list.front(), depth + 1),
                       list.size() > 1 ? ", …" : "");
}

/// The keys with their values, or the keys alone inside something else.
std::string summaryOfObject(const json& object, int depth) {
    std::vector<std::string> parts;
    for (const auto& [key, value] : object.items()) {
        if (parts.size() == mostKeys) {
            parts.emplace_back("…");
            break;
        }
        const std::string name = shortened(key);
        parts.push_back(depth == 0 ? fmt::format("{}:{}", name, summary(value, 1)) : name);
    }
    return fmt::format("{{{}}}", fmt::join(parts, ","));
}

std::string summary(const json& value, int depth) {
    constexpr int mostDepth = 2;
    if (value.is_string()) return shortened(value.get_ref<const std::string&>());
    if (value.is_structured() && depth > mostDepth) return "…";
    if (value.is_array()) return summaryOfList(value, depth);
    return value.is_object() ? summaryOfObject(value, depth) : dump(value);
}

/// What no file can be called is no path.
std::optional<std::string> pathOf(const std::optional<std::string>& text) {
    if (!text) return std::nullopt;
    std::string path = pathBytes(*text);
    if (path.find('\0') != std::string::npos) return std::nullopt;
    return path;
}

}  // namespace

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

std::optional<std::string> path(const Payload& payload) { return pathOf(string(payload)); }

std::optional<std::string> pathMember(const Payload& payload, const char* key) {
    return pathOf(stringMember(payload, key));
}

std::optional<std::vector<std::string>> pathListMember(const Payload& payload, const char* key) {
    auto texts = stringsMember(payload, key);
    if (!texts) return std::nullopt;
    return pathsOfTexts(std::move(*texts));
}

std::optional<std::vector<std::string>> pathsMember(const Payload& payload, const char* key) {
    auto paths = pathListMember(payload, key);
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

std::string description(const Payload& payload, Detail detail) {
    if (!payload) return "nil";
    return detail == Detail::whole ? dump(*payload) : summary(*payload, 0);
}

}  // namespace velto::payload
