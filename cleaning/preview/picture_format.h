#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace velto {

/// What the first bytes say that a picture is. Only formats whose decoders every web engine has and
/// whose dimensions stand in the file, and none that holds more than a picture (SVG).
struct PictureFormat {
    std::string_view mediaType;  // "image/png"
};

/// By the magic bytes alone, whatever the file is called; nothing for all else. Pure.
std::optional<PictureFormat> pictureFormat(std::string_view head);

/// What a decoder would make of the whole file, in pixels.
struct PictureSize {
    std::int64_t width = 0;
    std::int64_t height = 0;

    bool operator==(const PictureSize&) const = default;
};

/// The largest canvas that anything in the file asks for; nothing when it is damaged, or no picture
/// of these formats. Reads no further than the bytes given and decodes nothing. Pure.
std::optional<PictureSize> pictureSize(std::string_view bytes);

}  // namespace velto
