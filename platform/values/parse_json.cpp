#include "platform/values/parse_json.h"

#include <cstddef>

namespace velto {
namespace {

/// The position at which the text gets deeper than allowed, else its length. Exact for as much of
/// the text as is JSON, which is all that a parser goes through.
std::size_t endOfShallowPart(std::string_view text) {
    int depth = 0;
    bool isInString = false;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const char character = text[position];
        if (isInString) {
            if (character == '\\') ++position;
            if (character == '"') isInString = false;
            continue;
        }
        if (character == '"') isInString = true;
        if (character == '[' || character == '{') ++depth;
        if (character == ']' || character == '}') --depth;
        if (depth > deepestJson) return position;
    }
    return text.size();
}

}  // namespace

nlohmann::json parseJson(std::string_view text) {
    // Before a value is built: the parser itself does not care, but nobody could get rid of it.
    const std::size_t end = endOfShallowPart(text);
    if (end < text.size()) {
        throw nlohmann::json::parse_error::create(101, end, "nested too deep", nullptr);
    }
    return nlohmann::json::parse(text);
}

std::optional<nlohmann::json> tryParseJson(std::string_view text) {
    try {
        return parseJson(text);
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

}  // namespace velto
