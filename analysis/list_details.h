#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "analysis/DiskState.h"
#include "platform/FileManager.h"

namespace velto {

/// What the lists of an analysis do not say: sizes to the byte, and which copies are none.
struct ListDetails {
    using Sizes = std::map<std::string, std::int64_t>;  // bytes by path
    /// Names of one file, two and more, in the order of the group.
    using Names = std::vector<std::string>;

    Sizes files;                          // of large files, as the disk counts them
    Sizes copies;                         // of duplicates: the length of their content
    std::map<std::string, double> dates;  // of duplicates: when each was changed last, since 1970
    /// By group: the copies that are other names of one file, one list a file. Groups without any
    /// are left out.
    std::map<std::string, std::vector<Names>> linked;

    bool operator==(const ListDetails&) const = default;
};

/// Looks at every path now; what is gone or has become something else is left out. Blocks.
ListDetails listDetails(const std::vector<BigFile>& files, const std::vector<DupGroup>& groups,
                        const FileManager& manager);

}  // namespace velto
