#include "platform/linux/mount_table.h"

#include <cstddef>
#include <string>

namespace velto {
namespace {

constexpr int fieldsBefore = 4;  // number, parent, device, root

bool isOctal(char digit) { return digit >= '0' && digit <= '7'; }

/// Blanks, line ends and backslashes stand in the table as a backslash and three octal digits.
std::string unescaped(std::string_view field) {
    std::string text;
    while (!field.empty()) {
        if (field.size() >= 4 && field[0] == '\\' && isOctal(field[1]) && isOctal(field[2]) &&
            isOctal(field[3])) {
            text +=
                static_cast<char>((field[1] - '0') * 64 + (field[2] - '0') * 8 + (field[3] - '0'));
            field.remove_prefix(4);
        } else {
            text += field.front();
            field.remove_prefix(1);
        }
    }
    return text;
}

/// Empty when the line is none of the table.
std::string mountPoint(std::string_view line) {
    for (int field = 0; field < fieldsBefore; ++field) {
        const std::size_t blank = line.find(' ');
        if (blank == std::string_view::npos) return {};
        line.remove_prefix(blank + 1);
    }
    return unescaped(line.substr(0, line.find(' ')));
}

}  // namespace

bool holdsMount(std::string_view table, std::string_view path) {
    while (!table.empty()) {
        const std::size_t end = table.find('\n');
        const std::string place = mountPoint(table.substr(0, end));
        if (!place.starts_with('/')) return true;
        if (place.starts_with(path) && (place.size() == path.size() || place[path.size()] == '/')) {
            return true;
        }
        table.remove_prefix(end == std::string_view::npos ? table.size() : end + 1);
    }
    return false;
}

}  // namespace velto
