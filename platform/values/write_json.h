#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace velto {

/// What is done with a text that is not UTF-8.
enum class BadText {
    refused,   ///< Nothing is written: nlohmann::json::type_error is thrown.
    replaced,  ///< Its bad bytes are written as U+FFFD.
};

/// A value as JSON without blanks. A real takes the shortest text that reads as the same number
/// again, which the library's own writer misses now and then, and always shows that it is one
/// ("2.0"); one that is no number becomes null.
std::string writeJson(const nlohmann::json& value, BadText badText = BadText::refused);
std::string writeJson(const nlohmann::ordered_json& value, BadText badText = BadText::refused);

/// Appends a text or a real as `writeJson` writes it: a long list made piece by piece takes neither
/// the time nor the memory of one value that holds it all.
void appendJson(std::string& json, std::string_view text, BadText badText = BadText::refused);
void appendJson(std::string& json, double number);

/// True when the text needs no more than quotes to be a JSON string, as nearly every text does.
bool isPlainJsonText(std::string_view text);

}  // namespace velto
