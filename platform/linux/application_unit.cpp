#include "platform/linux/application_unit.h"

#include <algorithm>
#include <charconv>

#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

bool isHexadecimal(char letter) {
    return isDigit(letter) || (letter >= 'a' && letter <= 'f') || (letter >= 'A' && letter <= 'F');
}

/// systemd.unit(5): "\x2d" stands for a hyphen, and so on.
std::string unescaped(std::string_view unit) {
    std::string text;
    while (!unit.empty()) {
        int code = 0;
        const bool isEscape =
            unit.starts_with("\\x") && unit.size() >= 4 &&
            std::from_chars(unit.data() + 2, unit.data() + 4, code, 16).ptr == unit.data() + 4;
        text += isEscape ? static_cast<char>(code) : unit.front();
        unit.remove_prefix(isEscape ? 4 : 1);
    }
    return text;
}

bool dropFront(std::string_view& text, std::string_view front) {
    if (!text.starts_with(front)) return false;
    text.remove_prefix(front.size());
    return true;
}

bool dropEnd(std::string_view& text, std::string_view end) {
    if (!text.ends_with(end)) return false;
    text.remove_suffix(end.size());
    return true;
}

void dropFrom(std::string_view& text, std::size_t position) {
    text = text.substr(0, std::min(text.size(), position));
}

/// "0f1e2d3c-4b5a-6978-8796-a5b4c3d2e1f0"
bool isUUID(std::string_view text) {
    constexpr std::string_view form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    return std::ranges::equal(text, form, [](char letter, char wanted) {
        return wanted == '-' ? letter == '-' : isHexadecimal(letter);
    });
}

/// What tells one run of a command from the next.
void dropRun(std::string_view& command) {
    constexpr std::size_t longUUID = 36;
    if (command.size() > longUUID && isUUID(command.substr(command.size() - longUUID))) {
        const char before = command[command.size() - longUUID - 1];
        if (before == '-' || before == '.') command.remove_suffix(longUUID + 1);
        return;
    }
    const std::size_t hyphen = command.rfind('-');
    if (hyphen == std::string_view::npos || hyphen == 0 || hyphen + 1 == command.size()) return;
    if (std::ranges::all_of(command.substr(hyphen + 1), isDigit)) dropFrom(command, hyphen);
}

ApplicationUnit snapIn(std::string_view unit) {
    const bool isUnit = dropEnd(unit, ".scope") || dropEnd(unit, ".service");
    // Slices and mounts of a Snap hold no process of its.
    if (!isUnit && (unit.ends_with(".slice") || unit.ends_with(".mount"))) return {};
    const std::size_t stop = unit.find('.');
    ApplicationUnit owner{.snap = unescaped(unit.substr(0, stop))};
    if (stop == std::string_view::npos || owner.snap.empty()) return owner;
    std::string_view command = unit.substr(stop + 1);
    dropRun(command);
    const bool isHook = command.starts_with("hook.");
    if (!isHook && !command.empty()) owner.entry = owner.snap + "_" + unescaped(command);
    return owner;
}

/// What follows the launcher's name, if there is one: hyphens of the id itself are escaped.
std::string lastPart(std::string_view unit) { return unescaped(unit.substr(unit.rfind('-') + 1)); }

void dropNumber(std::string_view& unit) {
    const std::size_t number = unit.rfind('-');
    if (number != std::string_view::npos) dropFrom(unit, number);
}

ApplicationUnit applicationIn(std::string_view unit) {
    if (dropFront(unit, "snap.")) return snapIn(unit);
    if (dropFront(unit, "dbus-")) {
        if (!dropEnd(unit, ".service") || unit.find('-') == std::string_view::npos) return {};
        dropFrom(unit, unit.find('@'));
        return {.entry = lastPart(unit)};
    }
    const bool isApplication = dropFront(unit, "app-");
    if (!isApplication && !unit.starts_with("flatpak-")) return {};
    if (dropEnd(unit, ".scope")) {
        dropNumber(unit);
    } else if (isApplication && dropEnd(unit, ".service")) {
        if (unit.find('@') == std::string_view::npos) {
            dropRun(unit);
        } else {
            dropFrom(unit, unit.find('@'));
        }
    } else {
        return {};
    }
    const bool isFlatpak = dropFront(unit, "flatpak-");
    ApplicationUnit owner{.entry = lastPart(unit)};
    if (isFlatpak) owner.flatpak = owner.entry;
    return owner;
}

}  // namespace

ApplicationUnit applicationUnitIn(std::string_view controlGroup) {
    ApplicationUnit found;
    while (!controlGroup.empty()) {
        std::string_view line = nextLine(controlGroup);
        for (std::size_t slash = line.rfind('/'); slash != std::string_view::npos;
             slash = line.rfind('/')) {
            ApplicationUnit owner = applicationIn(line.substr(slash + 1));
            if (!owner.entry.empty()) return owner;
            if (found.snap.empty()) found = std::move(owner);
            line = line.substr(0, slash);
        }
    }
    return found;
}

}  // namespace velto
