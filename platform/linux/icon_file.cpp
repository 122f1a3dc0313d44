#include <array>
#include <cstdint>
#include <utility>

#include "platform/linux/LinuxIcons.h"

namespace velto {
namespace {

constexpr std::string_view pngSignature = "\x89PNG\r\n\x1a\n";

/// The types of entries that hold PNG files, with their width in pixels.
constexpr std::array<std::pair<std::string_view, int>, 11> pictureTypes{{
    {"icp4", 16},
    {"icp5", 32},
    {"icp6", 64},
    {"ic07", 128},
    {"ic08", 256},
    {"ic09", 512},
    {"ic10", 1024},
    {"ic11", 32},
    {"ic12", 64},
    {"ic13", 256},
    {"ic14", 512},
}};

std::size_t bigEndian(std::string_view bytes) {
    std::size_t value = 0;
    for (char byte : bytes.substr(0, 4))
        value = value << 8 | static_cast<std::uint8_t>(byte);
    return value;
}

int widthOf(std::string_view type) {
    for (const auto& [name, width] : pictureTypes) {
        if (name == type) return width;
    }
    return 0;
}

}  // namespace

std::string_view pngInIconFile(std::string_view file, int pixels) {
    // "icns", the length of the whole, then entries: a type, the entry's length, its content.
    constexpr std::size_t header = 8;
    if (!file.starts_with("icns") || file.size() < header) return {};
    std::string_view best;
    int bestWidth = 0;
    for (std::string_view rest = file.substr(header); rest.size() >= header;) {
        const std::size_t length = bigEndian(rest.substr(4));
        if (length < header || length > rest.size()) break;
        const int width = widthOf(rest.substr(0, 4));
        const std::string_view picture = rest.substr(header, length - header);
        const bool isBetter =
            bestWidth < pixels ? width > bestWidth : width >= pixels && width < bestWidth;
        if (isBetter && picture.starts_with(pngSignature)) {
            best = picture;
            bestWidth = width;
        }
        rest.remove_prefix(length);
    }
    return best;
}

}  // namespace velto
