#pragma once

#include <cstdint>
#include <vector>

#include "platform/BlockSharing.h"

namespace velto {

/// A part of a file that lies in one piece on the disk. Bytes.
struct FileExtent {
    std::int64_t offset = 0;    // in the file
    std::int64_t physical = 0;  // on the volume
    std::int64_t length = 0;
    bool isShared = false;   // another file or a snapshot has part of it
    bool isEncoded = false;  // compressed and the like: takes up less than it holds
    bool isNowhere = false;  // has no place of its own on the disk (yet)

    bool operator==(const FileExtent&) const = default;
};

/// What of a file of that length comes back when all its blocks are replaced. `block` is the
/// volume's smallest unit: what was reserved beyond the file's last block stays reserved.
OwnSpace ownSpaceIn(const std::vector<FileExtent>& extents, std::int64_t length,
                    std::int64_t block);

/// True when both say the same of every place up to the length, however it is cut into pieces.
/// Files with content that has no place (yet) are never one.
bool liesInSameBlocks(std::vector<FileExtent> one, std::vector<FileExtent> other,
                      std::int64_t length);

}  // namespace velto
