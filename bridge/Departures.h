#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/folders/FolderTree.h"
#include "cleaning/VeltoTrashService.h"

namespace velto {

/// What has left for the program's trash since an analysis, which still counts it. What was deleted
/// from the trash afterwards is part of it; what went back is not. Main thread; copies cross.
class Departures {
public:
    using Bytes = std::map<std::string, std::int64_t>;  // of trash items, by id

    /// `trash` as it is now, and what has gone back since it was taken last. Items moved before
    /// `measured` (seconds since 1970) were not met by the analysis.
    void take(const std::vector<TrashItem>& trash, const Bytes& bytes,
              const std::vector<VeltoTrashService::Returned>& returned, double measured);
    /// Something stands at these paths again.
    void noteBack(const std::vector<std::string>& paths);
    void forget() { byPath_.clear(); }

    /// What is missing from a folder's total, and from that of each folder directly inside.
    struct Missing {
        std::int64_t bytes = 0;
        std::int64_t files = 0;
    };
    struct Below {
        Missing all;
        std::map<std::string, Missing, std::less<>> folders;  // by name
    };
    Below below(const FolderTree& tree, const std::string& folder) const;

private:
    struct Departed {
        std::string id;
        std::int64_t bytes = 0;
    };
    std::map<std::string, Departed> byPath_;  // by the standardised path that it came from
};

}  // namespace velto
