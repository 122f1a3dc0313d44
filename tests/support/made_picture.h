#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace velto {

struct Colour {
    std::uint8_t red = 0, green = 0, blue = 0, alpha = 255;
};

/// A PNG file of one colour.
std::string pngPicture(int width, int height, Colour colour);

/// An Apple icon file with these entries (type, content).
std::string iconFile(const std::vector<std::pair<std::string, std::string>>& entries);

/// The two entries of a 32 by 32 picture of one colour in the old, run-length encoded form.
std::vector<std::pair<std::string, std::string>> oldIconEntries(Colour colour);

}  // namespace velto
