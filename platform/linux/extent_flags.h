#pragma once

#include <linux/fiemap.h>

namespace velto {

/// Flags of an extent (`FS_IOC_FIEMAP`) whose physical position says nothing of where its bytes
/// lie: not known yet, still to be written out, or kept among the file system's own data.
inline constexpr __u32 withoutPosition = FIEMAP_EXTENT_UNKNOWN | FIEMAP_EXTENT_DELALLOC |
                                         FIEMAP_EXTENT_DATA_INLINE | FIEMAP_EXTENT_NOT_ALIGNED;

}  // namespace velto
