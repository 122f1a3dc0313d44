#include "platform/posix/extents.h"

#include <algorithm>
#include <utility>

namespace velto {
namespace {

std::int64_t roundedUp(std::int64_t length, std::int64_t block) {
    return block <= 0 ? length : (length + block - 1) / block * block;
}

/// In the fewest pieces, without what begins at or beyond the length.
std::vector<FileExtent> joined(std::vector<FileExtent> extents, std::int64_t length) {
    std::vector<FileExtent> result;
    for (FileExtent& extent : extents) {
        if (extent.offset >= length) break;
        extent.length = std::min(extent.length, length - extent.offset);
        extent.isShared = false;
        FileExtent* const last = result.empty() ? nullptr : &result.back();
        // The pieces of a compressed one do not follow each other on the disk as they do in the
        // file, and are never cut in two where they are shared whole.
        const bool follows = last != nullptr && !extent.isEncoded && !last->isEncoded &&
                             last->offset + last->length == extent.offset &&
                             last->physical + last->length == extent.physical;
        if (follows) {
            last->length += extent.length;
        } else {
            result.push_back(extent);
        }
    }
    return result;
}

}  // namespace

OwnSpace ownSpaceIn(const std::vector<FileExtent>& extents, std::int64_t length,
                    std::int64_t block) {
    const std::int64_t end = roundedUp(length, block);
    OwnSpace space;
    for (const FileExtent& extent : extents) {
        if (extent.offset >= end || extent.isShared || extent.isNowhere) continue;
        space.bytes += std::min(extent.length, end - extent.offset);
        if (extent.isEncoded) space.isExact = false;
    }
    return space;
}

bool liesInSameBlocks(std::vector<FileExtent> one, std::vector<FileExtent> other,
                      std::int64_t length) {
    const auto hasNoPlace = [](const FileExtent& extent) { return extent.isNowhere; };
    if (std::ranges::any_of(one, hasNoPlace) || std::ranges::any_of(other, hasNoPlace)) {
        return false;
    }
    return joined(std::move(one), length) == joined(std::move(other), length);
}

}  // namespace velto
