#include "support/made_picture.h"

#include <algorithm>

namespace velto {
namespace {

std::string bigEndian(std::uint32_t value) {
    return {static_cast<char>(value >> 24), static_cast<char>(value >> 16 & 0xFF),
            static_cast<char>(value >> 8 & 0xFF), static_cast<char>(value & 0xFF)};
}

std::uint32_t crc(const std::string& bytes) {
    std::uint32_t sum = 0xFFFFFFFF;
    for (char byte : bytes) {
        sum ^= static_cast<std::uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~sum;
}

std::string chunk(const std::string& type, const std::string& content) {
    return bigEndian(static_cast<std::uint32_t>(content.size())) + type + content +
           bigEndian(crc(type + content));
}

/// A zlib stream that stores without compressing.
std::string stored(const std::string& bytes) {
    constexpr std::size_t most = 65535;
    std::string result = "\x78\x01";
    for (std::size_t at = 0; at < bytes.size(); at += most) {
        const std::size_t size = std::min(most, bytes.size() - at);
        result += at + size == bytes.size() ? '\x01' : '\0';
        result += static_cast<char>(size & 0xFF);
        result += static_cast<char>(size >> 8);
        result += static_cast<char>(~size & 0xFF);
        result += static_cast<char>(~size >> 8 & 0xFF);
        result += bytes.substr(at, size);
    }
    std::uint32_t low = 1, high = 0;  // Adler-32
    for (char byte : bytes) {
        low = (low + static_cast<std::uint8_t>(byte)) % 65521;
        high = (high + low) % 65521;
    }
    return result + bigEndian(high << 16 | low);
}

}  // namespace

std::string pngPicture(int width, int height, Colour colour) {
    std::string row(1, '\0');
    for (int column = 0; column < width; ++column) {
        for (std::uint8_t sample : {colour.red, colour.green, colour.blue, colour.alpha})
            row += static_cast<char>(sample);
    }
    std::string rows;
    for (int line = 0; line < height; ++line)
        rows += row;
    const std::string header = bigEndian(static_cast<std::uint32_t>(width)) +
                               bigEndian(static_cast<std::uint32_t>(height)) +
                               std::string("\x08\x06\0\0\0", 5);
    return "\x89PNG\r\n\x1a\n" + chunk("IHDR", header) + chunk("IDAT", stored(rows)) +
           chunk("IEND", "");
}

std::string iconFile(const std::vector<std::pair<std::string, std::string>>& entries) {
    std::string content;
    for (const auto& [type, bytes] : entries)
        content += type + bigEndian(static_cast<std::uint32_t>(bytes.size() + 8)) + bytes;
    return "icns" + bigEndian(static_cast<std::uint32_t>(content.size() + 8)) + content;
}

std::vector<std::pair<std::string, std::string>> oldIconEntries(Colour colour) {
    std::string planes;
    for (std::uint8_t sample : {colour.red, colour.green, colour.blue}) {
        for (int run = 0; run < 8; ++run) {  // of 128 equal bytes each
            planes += static_cast<char>(128 - 3 + 128);
            planes += static_cast<char>(sample);
        }
    }
    return {{"il32", planes}, {"l8mk", std::string(32 * 32, static_cast<char>(colour.alpha))}};
}

}  // namespace velto
