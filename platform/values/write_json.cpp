#include "platform/values/write_json.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/values/units.h"

namespace velto {
namespace {

template <typename Json>
class JsonWriter {
public:
    explicit JsonWriter(BadText badText) : badText_(badText) {}

    void append(const Json& value) {
        if (value.is_object()) {
            appendObject(value);
        } else if (value.is_array()) {
            appendList(value);
        } else if (value.is_string()) {
            appendJson(text_, value.template get_ref<const std::string&>(), badText_);
        } else if (value.is_number_float()) {
            appendJson(text_, value.template get<double>());
        } else {
            text_ += value.dump();
        }
    }

    std::string take() { return std::move(text_); }

private:
    void appendObject(const Json& object) {
        text_ += '{';
        const char* separator = "";
        for (const auto& [key, value] : object.items()) {
            text_ += separator;
            appendJson(text_, key, badText_);
            text_ += ':';
            append(value);
            separator = ",";
        }
        text_ += '}';
    }

    void appendList(const Json& list) {
        text_ += '[';
        const char* separator = "";
        for (const Json& value : list) {
            text_ += separator;
            append(value);
            separator = ",";
        }
        text_ += ']';
    }

    BadText badText_;
    std::string text_;
};

template <typename Json>
std::string written(const Json& value, BadText badText) {
    JsonWriter<Json> writer(badText);
    writer.append(value);
    return writer.take();
}

}  // namespace

std::string writeJson(const nlohmann::json& value, BadText badText) {
    return written(value, badText);
}

std::string writeJson(const nlohmann::ordered_json& value, BadText badText) {
    return written(value, badText);
}

void appendJson(std::string& json, std::string_view text, BadText badText) {
    if (isPlainJsonText(text)) {
        json += '"';
        json += text;
        json += '"';
    } else {
        using Json = nlohmann::json;
        json += Json(text).dump(-1, ' ', false,
                                badText == BadText::replaced ? Json::error_handler_t::replace
                                                             : Json::error_handler_t::strict);
    }
}

void appendJson(std::string& json, double number) {
    json += std::isfinite(number) ? shortest(number) : "null";
}

bool isPlainJsonText(std::string_view text) {
    return std::ranges::all_of(text, [](char character) {
        return character >= 0x20 && character < 0x7F && character != '"' && character != '\\';
    });
}

}  // namespace velto
