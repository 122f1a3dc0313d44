#pragma once

#include <functional>
#include <vector>

#include "analysis/DiskState.h"
#include "analysis/list_details.h"
#include "cleaning/DigestStore.h"
#include "cleaning/DupFinder.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"

namespace velto {

/// What a part of a long comparison has brought.
struct ComparedPart {
    std::vector<DupGroup> groups;
    ListDetails details;           // of those groups
    std::vector<FileRecord> left;  // what is still to be compared
};

/// Compares files on a thread of the lowest priority, the smaller ones first, and tells of each
/// part on that thread. Blocks until all are compared or the flag is set.
/// `digests`, which may be null, knows what was read before and gets what is read now.
void compareInParts(Platform& platform, const std::vector<FileRecord>& files, DigestStore* digests,
                    const CancellationFlag& cancelled,
                    const std::function<void(ComparedPart)>& tell);

}  // namespace velto
