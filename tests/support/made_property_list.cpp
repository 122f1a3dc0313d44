#include "support/made_property_list.h"

#include <cstdint>

namespace velto {
namespace {

std::string escaped(const std::string& text) {
    std::string result;
    for (char character : text) {
        if (character == '&') {
            result += "&amp;";
        } else if (character == '<') {
            result += "&lt;";
        } else {
            result += character;
        }
    }
    return result;
}

std::string xml(const PropertyList& value) {
    if (const auto* text = std::get_if<std::string>(&value.value)) {
        return "<string>" + escaped(*text) + "</string>\n";
    }
    if (const auto* flag = std::get_if<bool>(&value.value)) return *flag ? "<true/>" : "<false/>";
    if (const auto* number = std::get_if<std::int64_t>(&value.value)) {
        return "<integer>" + std::to_string(*number) + "</integer>\n";
    }
    if (const auto* list = std::get_if<PropertyList::List>(&value.value)) {
        std::string result = "<array>\n";
        for (const PropertyList& item : *list)
            result += xml(item);
        return result + "</array>\n";
    }
    std::string result = "<dict>\n";
    for (const auto& [key, item] : std::get<PropertyList::Dictionary>(value.value)) {
        result += "\t<key>" + escaped(key) + "</key>\n\t" + xml(item);
    }
    return result + "</dict>\n";
}

std::string bigEndian(std::uint64_t value, int bytes) {
    std::string result;
    for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8)
        result += static_cast<char>(value >> shift & 0xFF);
    return result;
}

/// Writes objects one after another; references are two bytes.
class Writer {
public:
    std::string file(const PropertyList& value) {
        const std::uint64_t top = add(value);
        std::string result = "bplist00";
        std::string offsets;
        for (const std::string& object : objects_) {
            offsets += bigEndian(result.size(), 4);
            result += object;
        }
        const std::uint64_t table = result.size();
        return result + offsets + std::string(6, '\0') + '\x04' + '\x02' +
               bigEndian(objects_.size(), 8) + bigEndian(top, 8) + bigEndian(table, 8);
    }

private:
    static std::string marker(int type, std::size_t count) {
        if (count < 15) return {static_cast<char>(type << 4 | static_cast<int>(count))};
        return std::string{static_cast<char>(type << 4 | 15), '\x12'} + bigEndian(count, 4);
    }

    /// One byte a letter, or two of UTF-16 when there is a letter beyond ASCII (none beyond the
    /// first plane).
    static std::string textObject(const std::string& text) {
        std::vector<unsigned> letters;
        bool isAscii = true;
        for (std::size_t at = 0; at < text.size();) {
            const auto byte = [&](std::size_t index) {
                return static_cast<unsigned>(static_cast<unsigned char>(text.at(index)));
            };
            const unsigned first = byte(at++);
            unsigned letter = first;
            if (first >= 0xE0) {
                letter = (first & 0xF) << 12 | (byte(at) & 0x3F) << 6 | (byte(at + 1) & 0x3F);
                at += 2;
            } else if (first >= 0x80) {
                letter = (first & 0x1F) << 6 | (byte(at) & 0x3F);
                ++at;
            }
            isAscii = isAscii && letter < 0x80;
            letters.push_back(letter);
        }
        std::string object = marker(isAscii ? 5 : 6, letters.size());
        for (unsigned letter : letters)
            object += bigEndian(letter, isAscii ? 1 : 2);
        return object;
    }

    std::uint64_t put(std::string object) {
        objects_.push_back(std::move(object));
        return objects_.size() - 1;
    }

    std::uint64_t add(const PropertyList& value) {
        if (const auto* text = std::get_if<std::string>(&value.value)) {
            return put(textObject(*text));
        }
        if (const auto* flag = std::get_if<bool>(&value.value)) return put(*flag ? "\x09" : "\x08");
        if (const auto* number = std::get_if<std::int64_t>(&value.value)) {
            return put('\x13' + bigEndian(static_cast<std::uint64_t>(*number), 8));
        }
        std::string keys, values;
        if (const auto* list = std::get_if<PropertyList::List>(&value.value)) {
            for (const PropertyList& item : *list)
                values += bigEndian(add(item), 2);
            return put(marker(0xA, list->size()) + values);
        }
        const auto& dictionary = std::get<PropertyList::Dictionary>(value.value);
        for (const auto& [key, item] : dictionary) {
            keys += bigEndian(add({key}), 2);
            values += bigEndian(add(item), 2);
        }
        return put(marker(0xD, dictionary.size()) + keys + values);
    }

    std::vector<std::string> objects_;
};

}  // namespace

std::string xmlPropertyList(const PropertyList& value) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
)" + xml(value) +
           "</plist>\n";
}

std::string binaryPropertyList(const PropertyList& value) { return Writer().file(value); }

PropertyList textDictionary(const std::vector<std::pair<std::string, std::string>>& texts) {
    PropertyList::Dictionary dictionary;
    for (const auto& [key, text] : texts)
        dictionary.push_back({key, {text}});
    return {dictionary};
}

}  // namespace velto
