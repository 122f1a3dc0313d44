#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "cleaning/preview/picture_format.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"

namespace velto {

/// What can be shown of one file. Nothing is decoded here: a picture is its own bytes, of a known
/// format and of bounded dimensions, for who decodes it where it can do no harm.
struct FilePreview {
    enum class Kind { none, text, picture };
    /// Why there is none.
    enum class Reason {
        gone,      // nothing, or something else, stands there by now
        refused,   // protected, behind a link, or outside the home
        closed,    // the system does not let this user read it
        inCloud,   // its content would have to be downloaded first
        tooLong,   // a picture of more than `mostPictureBytes`
        tooLarge,  // a picture of more than `mostPixels`
        damaged,   // a picture whose dimensions cannot be told
        noKind,    // neither text nor a picture of a known format
        other,     // reading failed
    };

    Kind kind = Kind::none;
    Reason reason = Reason::noKind;     // of none
    std::int64_t bytes = 0;             // logical size of the file
    double modified = 0;                // seconds since 1970; 0 when not known
    std::string text;                   // UTF-8
    bool isWhole = true;                // false: the text goes on
    std::string_view mediaType;         // of a picture
    std::optional<PictureSize> pixels;  // as far as they can be told, also of one that is too large
    std::string content;                // of a picture: the whole file
};

/// Reads what there is to show of a file, bounded whatever it holds.
class FilePreviewReader {
public:
    static constexpr std::int64_t mostTextBytes = 16 * 1024;
    static constexpr std::int64_t mostPictureBytes = 16 * 1024 * 1024;
    static constexpr std::int64_t mostPixels = 50'000'000;  // some 200 MB when decoded
    static constexpr std::int64_t longestSide = 16'384;     // pixels

    /// The platform outlives the reader.
    explicit FilePreviewReader(const Platform& platform) : platform_(platform) {}

    /// Judges the path by the rules of the trash (inside the home, no link anywhere on the way) and
    /// reads what was judged and nothing else: a regular file, without waiting for a download and
    /// without counting as its use. Blocks as long as the disk takes; safe from every thread.
    /// Nothing when cancelled; otherwise never fails.
    std::optional<FilePreview> read(const std::string& path, const CancellationFlag& cancelled);

private:
    const Platform& platform_;
};

}  // namespace velto
