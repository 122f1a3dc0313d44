#include "cleaning/preview/picture_format.h"

#include <algorithm>
#include <array>

namespace velto {
namespace {

using namespace std::string_view_literals;

/// Bytes of a file that may end anywhere: beyond the end everything reads as 0.
class Bytes {
public:
    explicit Bytes(std::string_view text) : text_(text) {}

    std::size_t size() const { return text_.size(); }
    bool has(std::size_t at, std::size_t count) const {
        return at <= text_.size() && count <= text_.size() - at;
    }
    bool is(std::size_t at, std::string_view word) const {
        return has(at, word.size()) && text_.substr(at, word.size()) == word;
    }
    std::int64_t byte(std::size_t at) const {
        return at < text_.size() ? static_cast<unsigned char>(text_[at]) : 0;
    }
    std::int64_t little(std::size_t at, std::size_t count) const {
        std::int64_t value = 0;
        for (std::size_t index = count; index > 0; --index)
            value = value << 8 | byte(at + index - 1);
        return value;
    }
    std::int64_t big(std::size_t at, std::size_t count) const {
        std::int64_t value = 0;
        for (std::size_t index = 0; index < count; ++index)
            value = value << 8 | byte(at + index);
        return value;
    }

private:
    std::string_view text_;
};

// ISO/IEC 15948 (PNG): a signature, then the chunk IHDR with two numbers of four bytes.
std::optional<PictureSize> pngSize(const Bytes& bytes) {
    if (!bytes.is(12, "IHDR") || !bytes.has(16, 8)) return std::nullopt;
    return PictureSize{.width = bytes.big(16, 4), .height = bytes.big(20, 4)};
}

// ITU-T T.81, B.1.1 and B.2: segments with a length, until the one that tells the frame.
std::optional<PictureSize> jpegSize(const Bytes& bytes) {
    std::size_t at = 2;
    while (bytes.has(at, 4)) {
        if (bytes.byte(at) != 0xFF) return std::nullopt;
        const std::int64_t marker = bytes.byte(at + 1);
        if (marker == 0xFF) {  // a fill byte
            ++at;
            continue;
        }
        const bool standsAlone = marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
        if (standsAlone) {
            at += 2;
            continue;
        }
        const bool isFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (isFrame) {
            if (!bytes.has(at, 9)) return std::nullopt;
            return PictureSize{.width = bytes.big(at + 7, 2), .height = bytes.big(at + 5, 2)};
        }
        const std::int64_t length = bytes.big(at + 2, 2);
        const bool isData = marker == 0xD9 || marker == 0xDA;  // before any frame
        if (isData || length < 2) return std::nullopt;
        at += 2 + static_cast<std::size_t>(length);
    }
    return std::nullopt;
}

/// Behind a table of colours whose flags are `flags` (GIF89a, 18 and 20).
std::size_t afterColours(std::size_t at, std::int64_t flags) {
    if ((flags & 0x80) == 0) return at;
    return at + 3 * (std::size_t{2} << static_cast<unsigned>(flags & 7));
}

/// Behind a row of blocks, each with its length before it, that ends with an empty one.
std::size_t afterBlocks(const Bytes& bytes, std::size_t at) {
    while (bytes.has(at, 1) && bytes.byte(at) != 0)
        at += 1 + static_cast<std::size_t>(bytes.byte(at));
    return at + 1;
}

// GIF89a. Decoders grow the canvas to a frame that is larger than what the head says.
std::optional<PictureSize> gifSize(const Bytes& bytes) {
    if (!bytes.has(6, 7)) return std::nullopt;
    PictureSize size{.width = bytes.little(6, 2), .height = bytes.little(8, 2)};
    std::size_t at = afterColours(13, bytes.byte(10));
    bool hasFrame = false;
    while (bytes.has(at, 1)) {
        const std::int64_t block = bytes.byte(at);
        if (block == 0x21) {  // an extension
            at = afterBlocks(bytes, at + 2);
        } else if (block == 0x2C && bytes.has(at, 10)) {  // a frame
            hasFrame = true;
            size.width = std::max(size.width, bytes.little(at + 1, 2) + bytes.little(at + 5, 2));
            size.height = std::max(size.height, bytes.little(at + 3, 2) + bytes.little(at + 7, 2));
            at = afterBlocks(bytes, afterColours(at + 10, bytes.byte(at + 9)) + 1);
        } else {  // the end, or what no decoder reads
            break;
        }
    }
    return hasFrame ? std::optional(size) : std::nullopt;
}

// RFC 9649. In the extended form the canvas bounds every frame.
std::optional<PictureSize> webpSize(const Bytes& bytes) {
    if (bytes.is(12, "VP8X") && bytes.has(20, 10))
        return PictureSize{.width = bytes.little(24, 3) + 1, .height = bytes.little(27, 3) + 1};
    if (bytes.is(12, "VP8L") && bytes.is(20, "\x2F") && bytes.has(20, 5)) {
        const std::int64_t both = bytes.little(21, 4);
        return PictureSize{.width = (both & 0x3FFF) + 1, .height = (both >> 14 & 0x3FFF) + 1};
    }
    if (bytes.is(12, "VP8 ") && bytes.is(23, "\x9D\x01\x2A") && bytes.has(20, 10))
        return PictureSize{.width = bytes.little(26, 2) & 0x3FFF,
                           .height = bytes.little(28, 2) & 0x3FFF};
    return std::nullopt;
}

bool isWebp(const Bytes& bytes) { return bytes.is(0, "RIFF") && bytes.is(8, "WEBP"); }

struct Row {
    std::string_view mediaType;
    bool (*isIt)(const Bytes&);
    std::optional<PictureSize> (*size)(const Bytes&);
};
constexpr auto formats = std::to_array<Row>({
    {"image/png", [](const Bytes& bytes) { return bytes.is(0, "\x89PNG\r\n\x1A\n"sv); }, pngSize},
    {"image/jpeg", [](const Bytes& bytes) { return bytes.is(0, "\xFF\xD8\xFF"sv); }, jpegSize},
    {"image/gif",
     [](const Bytes& bytes) { return bytes.is(0, "GIF87a"sv) || bytes.is(0, "GIF89a"sv); },
     gifSize},
    {"image/webp", isWebp, webpSize},
});

const Row* formatOf(const Bytes& bytes) {
    const auto found =
        std::ranges::find_if(formats, [&](const Row& row) { return row.isIt(bytes); });
    return found == formats.end() ? nullptr : &*found;
}

}  // namespace

std::optional<PictureFormat> pictureFormat(std::string_view head) {
    const Row* const row = formatOf(Bytes(head));
    if (row == nullptr) return std::nullopt;
    return PictureFormat{.mediaType = row->mediaType};
}

std::optional<PictureSize> pictureSize(std::string_view text) {
    const Bytes bytes(text);
    const Row* const row = formatOf(bytes);
    if (row == nullptr) return std::nullopt;
    const auto size = row->size(bytes);
    return size && size->width > 0 && size->height > 0 ? size : std::nullopt;
}

}  // namespace velto
