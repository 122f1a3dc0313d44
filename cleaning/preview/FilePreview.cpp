#include "cleaning/preview/FilePreview.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <span>
#include <utility>

#include "cleaning/TrashGuard.h"
#include "cleaning/preview/text_beginning.h"
#include "platform/WithoutCloudDownloads.h"
#include "platform/values/units.h"

namespace velto {
namespace {

using NoPreview = FilePreview::Reason;

NoPreview reasonOf(int error) {
    switch (error) {
        case ENOENT:
        case ENOTDIR:
        case EINVAL:  // no regular file any more
        case EISDIR:
            return NoPreview::gone;
        case ELOOP:
            return NoPreview::refused;
        case EACCES:
        case EPERM:
            return NoPreview::closed;
        case EDEADLK:
            return NoPreview::inCloud;
        default:
            return NoPreview::other;
    }
}

/// At most `most` bytes from the start on. Throws the reason; nothing when cancelled.
std::optional<std::string> beginning(FileContent& file, std::int64_t most,
                                     const CancellationFlag& cancelled) {
    constexpr std::int64_t piece = 1024 * 1024;
    std::string content;
    while (std::ssize(content) < most) {
        if (cancelled.isCancelled()) return std::nullopt;
        const std::size_t filled = content.size();
        const std::int64_t wanted = std::min(piece, most - std::ssize(content));
        content.resize(filled + static_cast<std::size_t>(wanted));
        const std::ptrdiff_t count =
            file.read(static_cast<std::int64_t>(filled),
                      std::as_writable_bytes(std::span(content).subspan(filled)));
        const int error = errno;
        content.resize(filled + static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, count)));
        if (count < 0 && error != EINTR) throw reasonOf(error);
        if (count == 0) break;
    }
    return content;
}

/// Opens what the guard has judged. Throws the reason.
std::unique_ptr<FileContent> openJudged(const Platform& platform, const std::string& path) {
    const TrashGuard guard(*platform.files, *platform.mover, platform.layout);
    try {
        const auto admitted = guard.admit(path, {});
        if (admitted.attributes.kind == FileKind::symbolicLink) throw NoPreview::refused;
        if (admitted.attributes.kind != FileKind::regular) throw NoPreview::gone;
        auto file = platform.contents->open(path);
        if (!file) throw reasonOf(errno);
        // A folder of the path may have become a link since: then this is another file.
        const auto stamp = file->stamp();
        if (!stamp || stamp->identity != admitted.attributes.identity) throw NoPreview::gone;
        return file;
    } catch (const TrashError& error) {
        throw error.reason() == TrashError::Reason::notFound ? NoPreview::gone : NoPreview::refused;
    } catch (const FileError& error) {
        throw reasonOf(error.code());
    }
}

/// False when cancelled. Throws the reason.
bool fillIn(FilePreview& preview, FileContent& file, const CancellationFlag& cancelled) {
    const auto stamp = file.stamp();
    if (!stamp) throw NoPreview::other;
    preview.bytes = stamp->length;
    preview.modified = momentOf(0, stamp->modified);
    const auto head = beginning(file, FilePreviewReader::mostTextBytes, cancelled);
    if (!head) return false;
    const auto format = pictureFormat(*head);
    if (!format) {
        preview.isWhole = preview.bytes <= std::ssize(*head);
        auto text = textBeginning(*head, preview.isWhole);
        if (!text) throw NoPreview::noKind;
        preview.kind = FilePreview::Kind::text;
        preview.text = std::move(*text);
        return true;
    }
    preview.mediaType = format->mediaType;
    preview.pixels = pictureSize(*head);
    if (preview.bytes > FilePreviewReader::mostPictureBytes) throw NoPreview::tooLong;
    // One byte more tells that it has grown meanwhile.
    auto content = beginning(file, FilePreviewReader::mostPictureBytes + 1, cancelled);
    if (!content) return false;
    if (std::ssize(*content) > FilePreviewReader::mostPictureBytes) throw NoPreview::tooLong;
    preview.pixels = pictureSize(*content);
    if (!preview.pixels) throw NoPreview::damaged;
    const auto [width, height] = *preview.pixels;
    if (std::max(width, height) > FilePreviewReader::longestSide ||
        width * height > FilePreviewReader::mostPixels)
        throw NoPreview::tooLarge;
    preview.kind = FilePreview::Kind::picture;
    preview.content = std::move(*content);
    return true;
}

}  // namespace

std::optional<FilePreview> FilePreviewReader::read(const std::string& path,
                                                   const CancellationFlag& cancelled) {
    const WithoutCloudDownloads policy;
    FilePreview preview;
    try {
        const auto file = openJudged(platform_, path);
        if (!fillIn(preview, *file, cancelled)) return std::nullopt;
    } catch (const NoPreview reason) {
        preview.reason = reason;
    }
    return preview;
}

}  // namespace velto
