#include "platform/values/parse_json.h"

#include <cstddef>
#include <cstdint>
#include <utility>

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

[[noreturn]] void refuseDepth(std::size_t position) {
    throw nlohmann::json::parse_error::create(101, position, "nested too deep", nullptr);
}

/// Builds values as the library does, but for the objects inside, which are handed over.
class ObjectReader {
public:
    explicit ObjectReader(const TakeObject& take) : take_(take) {}

    nlohmann::json value() { return std::move(value_); }

    bool null() { return add(nullptr); }
    bool boolean(bool value) { return add(value); }
    bool number_integer(std::int64_t value) { return add(value); }
    bool number_unsigned(std::uint64_t value) { return add(value); }
    bool number_float(double value, const std::string&) { return add(value); }
    bool string(std::string& value) { return add(std::move(value)); }
    bool binary(nlohmann::json::binary_t&) { return false; }  // JSON has none

    bool start_object(std::size_t) { return open(nlohmann::json::object()); }
    bool start_array(std::size_t) { return open(nlohmann::json::array()); }

    bool key(std::string& name) {
        open_.back().erase(name);  // of two members of one name the last one counts
        members_.back() = std::move(name);
        return true;
    }

    bool end_object() {
        nlohmann::json object = close();
        if (open_.empty()) return add(std::move(object));
        take_(members_, object);
        return true;
    }

    bool end_array() { return add(close()); }

    template <typename Error>
    bool parse_error(std::size_t, const std::string&, const Error& error) {
        throw Error(error);
    }

private:
    bool open(nlohmann::json container) {
        if (open_.size() == deepestJson) refuseDepth(0);
        open_.push_back(std::move(container));
        members_.emplace_back();
        return true;
    }

    nlohmann::json close() {
        nlohmann::json closed = std::move(open_.back());
        open_.pop_back();
        members_.pop_back();
        return closed;
    }

    bool add(nlohmann::json value) {
        if (open_.empty()) {
            value_ = std::move(value);
        } else if (open_.back().is_array()) {
            open_.back().push_back(std::move(value));
        } else {
            open_.back()[members_.back()] = std::move(value);
        }
        return true;
    }

    const TakeObject& take_;
    nlohmann::json value_;
    std::vector<nlohmann::json> open_;  // from the outermost one inwards
    std::vector<std::string> members_;  // of each of them, the one that is read
};

}  // namespace

nlohmann::json parseJson(std::string_view text) {
    // Before a value is built: the parser itself does not care, but nobody could get rid of it.
    const std::size_t end = endOfShallowPart(text);
    if (end < text.size()) refuseDepth(end);
    return nlohmann::json::parse(text);
}

nlohmann::json parseJson(std::string_view text, const TakeObject& take) {
    ObjectReader reader(take);
    nlohmann::json::sax_parse(text, &reader);
    return reader.value();
}

std::optional<nlohmann::json> tryParseJson(std::string_view text) {
    try {
        return parseJson(text);
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

}  // namespace velto
