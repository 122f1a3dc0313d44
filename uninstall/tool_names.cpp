#include "uninstall/tool_names.h"

#include <algorithm>
#include <cstddef>

namespace velto {
namespace {

constexpr std::size_t longestName = 255;

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

/// Of a name between two full stops.
bool isElement(std::string_view element) {
    if (element.empty() || isDigit(element.front()) || element.front() == '-') return false;
    return std::ranges::all_of(element, [](char character) {
        return isLetter(character) || isDigit(character) || character == '_' || character == '-';
    });
}

bool hasLengthOfName(std::string_view name) {
    return !name.empty() && name.size() <= longestName && name.front() != '-';
}

}  // namespace

bool isFlatpakIdentifier(std::string_view name) {
    if (!hasLengthOfName(name) || std::ranges::count(name, '.') < 2) return false;
    while (true) {
        const std::size_t stop = name.find('.');
        if (!isElement(name.substr(0, stop))) return false;
        if (stop == std::string_view::npos) return true;
        name.remove_prefix(stop + 1);
    }
}

bool isUnitName(std::string_view name) {
    return hasLengthOfName(name) && std::ranges::all_of(name, [](char character) {
               return isLetter(character) || isDigit(character) ||
                      std::string_view(":-_.\\@").find(character) != std::string_view::npos;
           });
}

bool isServiceLabel(std::string_view label) {
    return hasLengthOfName(label) && std::ranges::none_of(label, [](char character) {
               const auto byte = static_cast<unsigned char>(character);
               return byte <= 0x20 || byte == 0x7F || character == '/';
           });
}

}  // namespace velto
