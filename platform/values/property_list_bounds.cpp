#include <algorithm>
#include <cstdint>
#include <optional>

#include "platform/values/PropertyList.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::size_t mostTags = 100'000;        // of XML, closing ones too
constexpr std::size_t mostMovedBytes = 1 << 26;  // of XML: of texts, once for each entity in them
constexpr std::size_t mostContainers = 10'000;   // of XML: they may all lie inside one another
constexpr int mostDepth = 200;                   // of the binary form
constexpr std::uint64_t mostValues = 1'000'000;  // of it, with every reference followed

constexpr std::string_view binaryMark = "bplist";
constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

/// The object table of a binary property list (the format of CFBinaryPList): every object has an
/// offset, and arrays, sets and dictionaries refer to others by number, several times if they like.
class ObjectTable {
public:
    explicit ObjectTable(std::string_view bytes) : bytes_(bytes) {}

    /// False when the table is damaged, deeper than allowed, or stands for too many values.
    bool isBounded() {
        if (!readTrailer()) return false;
        objects_.assign(count_, {});
        return measure(top_);
    }

private:
    enum class State : std::uint8_t { unseen, open, measured };
    struct Object {
        State state = State::unseen;
        int depth = 0;
        std::uint64_t values = 0;  // itself and everything below it
    };
    struct Container {
        std::size_t object = 0;
        std::size_t references = 0;  // where they begin
        std::size_t left = 0;
    };

    std::optional<std::uint64_t> number(std::size_t offset, std::size_t size) const {
        if (size == 0 || size > 8 || offset > bytes_.size() || size > bytes_.size() - offset) {
            return std::nullopt;
        }
        std::uint64_t value = 0;
        for (std::size_t index = 0; index < size; ++index) {
            value = value << 8 | static_cast<std::uint8_t>(bytes_[offset + index]);
        }
        return value;
    }

    bool readTrailer() {
        if (bytes_.size() < headerSize + trailerSize) return false;
        const std::size_t trailer = bytes_.size() - trailerSize;
        offsetSize_ = static_cast<std::uint8_t>(bytes_[trailer + 6]);
        referenceSize_ = static_cast<std::uint8_t>(bytes_[trailer + 7]);
        const auto count = number(trailer + 8, 8);
        const auto top = number(trailer + 16, 8);
        const auto table = number(trailer + 24, 8);
        if (offsetSize_ == 0 || offsetSize_ > 8 || referenceSize_ == 0 || referenceSize_ > 8) {
            return false;
        }
        if (*table > trailer || *count > (trailer - *table) / offsetSize_ || *top >= *count) {
            return false;
        }
        count_ = static_cast<std::size_t>(*count);
        top_ = static_cast<std::size_t>(*top);
        table_ = static_cast<std::size_t>(*table);
        return true;
    }

    /// The count in an object's marker or in the number object after it; moves `place` behind it.
    std::optional<std::size_t> countAt(std::size_t& place) const {
        std::uint64_t count = static_cast<std::uint8_t>(bytes_[place++]) & 0xF;
        if (count == 0xF) {
            const auto size = number(place, 1);
            if (!size || *size >> 4 != 1 || (*size & 0xF) > 3) return std::nullopt;
            const std::size_t bytes = std::size_t{1} << (*size & 0xF);
            const auto whole = number(place + 1, bytes);
            if (!whole) return std::nullopt;
            count = *whole;
            place += 1 + bytes;
        }
        if (place > table_ || count > table_ - place) return std::nullopt;
        return static_cast<std::size_t>(count);
    }

    /// A text with a NUL in it is no text of a property list, and a parser may take it for its end.
    bool holdsNul(std::size_t place, std::size_t letters, std::size_t width) const {
        for (std::size_t letter = 0; letter < letters; ++letter) {
            const auto value = number(place + letter * width, width);
            if (!value || *value == 0) return true;
        }
        return false;
    }

    /// The references of an object, none for what is no container; nothing when it is damaged.
    std::optional<Container> container(std::size_t object) const {
        const auto offset = number(table_ + object * offsetSize_, offsetSize_);
        if (!offset || *offset >= table_) return std::nullopt;
        std::size_t place = static_cast<std::size_t>(*offset);
        const int type = static_cast<std::uint8_t>(bytes_[place]) >> 4;
        Container found{.object = object};
        constexpr int text = 0x5, wideText = 0x6, utf8Text = 0x7;
        constexpr int array = 0xA, orderedSet = 0xB, set = 0xC, dictionary = 0xD;
        const bool isText = type == text || type == wideText || type == utf8Text;
        if (!isText && type != array && type != orderedSet && type != set && type != dictionary) {
            return found;
        }
        auto count = countAt(place);
        if (!count) return std::nullopt;
        if (isText) {
            if (holdsNul(place, *count, type == wideText ? 2 : 1)) return std::nullopt;
            return found;
        }
        if (type == dictionary) *count *= 2;
        if (*count > (table_ - place) / referenceSize_) return std::nullopt;
        found.references = place;
        found.left = *count;
        return found;
    }

    bool measure(std::size_t first) {
        std::vector<Container> open;
        const auto enter = [&](std::size_t object) {
            const auto found = container(object);
            if (!found || open.size() >= mostDepth) return false;
            objects_[object] = {.state = State::open, .depth = 1, .values = 1};
            open.push_back(*found);
            return true;
        };
        if (!enter(first)) return false;
        while (!open.empty()) {
            Container& current = open.back();
            Object& object = objects_[current.object];
            if (current.left == 0) {
                object.state = State::measured;
                open.pop_back();
                if (!open.empty() && !add(open.back(), object)) return false;
                continue;
            }
            const auto reference = number(current.references, referenceSize_);
            if (!reference || *reference >= count_) return false;
            const Object& next = objects_[*reference];
            if (next.state == State::open) return false;  // a value inside itself
            if (next.state == State::unseen) {
                if (!enter(static_cast<std::size_t>(*reference))) return false;
            } else if (!add(current, next)) {
                return false;
            }
        }
        return true;
    }

    bool add(Container& container, const Object& part) {
        container.references += referenceSize_;
        --container.left;
        Object& whole = objects_[container.object];
        whole.depth = std::max(whole.depth, part.depth + 1);
        whole.values += part.values;
        return whole.depth <= mostDepth && whole.values <= mostValues;
    }

    std::string_view bytes_;
    std::size_t offsetSize_ = 0, referenceSize_ = 0, count_ = 0, top_ = 0, table_ = 0;
    std::vector<Object> objects_;
};

/// A NUL byte, or a numeric character reference to one.
bool holdsNul(std::string_view xml) {
    if (xml.find('\0') != std::string_view::npos) return true;
    for (std::size_t at = xml.find("&#"); at != std::string_view::npos; at = xml.find("&#", at)) {
        at += 2;
        if (at < xml.size() && (xml[at] == 'x' || xml[at] == 'X')) ++at;
        const std::size_t end = xml.find_first_not_of('0', at);
        if (end != at && (end == std::string_view::npos || xml[end] == ';')) return true;
    }
    return false;
}

/// A document type that declares something itself. No program writes one: real lists name Apple's.
bool declaresItsOwnType(std::string_view xml) {
    const std::size_t begin = xml.find("<!DOCTYPE");
    if (begin == std::string_view::npos) return xml.find("<!ENTITY") != std::string_view::npos;
    char quote = '\0';
    for (const char each : xml.substr(begin)) {
        if (quote != '\0') {
            if (each == quote) quote = '\0';
        } else if (each == '"' || each == '\'') {
            quote = each;
        } else if (each == '[') {
            return true;
        } else if (each == '>') {
            return xml.find("<!ENTITY") != std::string_view::npos;
        }
    }
    return true;  // it never ends
}

/// Texts between tags with few entities for their length, and not too many tags.
bool hasLightTexts(std::string_view xml) {
    std::size_t tags = 0, moved = 0;
    while (!xml.empty()) {
        const std::string_view text = xml.substr(0, xml.find('<'));
        const auto entities = static_cast<std::size_t>(std::ranges::count(text, '&'));
        moved += entities * text.size();
        if (moved > mostMovedBytes || ++tags > mostTags) return false;
        xml.remove_prefix(std::min(xml.size(), text.size() + 1));
    }
    return true;
}

}  // namespace

bool isBoundedPropertyList(std::string_view bytes) {
    if (bytes.size() > longestPropertyList) return false;
    if (bytes.starts_with(binaryMark)) return ObjectTable(bytes).isBounded();
    if (holdsNul(bytes) || declaresItsOwnType(bytes) || !hasLightTexts(bytes)) return false;
    return occurrences(bytes, "<array") + occurrences(bytes, "<dict") <= mostContainers;
}

}  // namespace velto
