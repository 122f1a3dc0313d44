#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "analysis/growth/GrowthSnapshot.h"

namespace velto {

/// A folder whose size has changed. Each byte is told by one folder only: what folders below tell
/// for themselves is no part of it.
struct GrowthChange {
    enum class Kind {
        grown,
        appeared,  // it was not there, or smaller than a snapshot keeps; tells for all below it
        shrunk,
        gone  // it is not there any more, or as small; the same
    };

    std::string path;        // as of the later snapshot, of what has gone as of the earlier one
    std::int64_t bytes = 0;  // below zero when it has shrunk or gone
    Kind kind = Kind::grown;
};

/// The same folder under another path. By how much it has changed is told apart.
struct GrowthRename {
    std::string from;
    std::string to;
    std::int64_t bytes = 0;  // that it has now
};

/// What has changed from one analysis to a later one, in what both have measured.
struct Growth {
    std::int64_t since = 0;             // seconds since 1970
    std::int64_t until = 0;             // the same
    std::int64_t bytes = 0;             // later minus earlier
    std::vector<GrowthChange> grown;    // those that appeared among them; most first
    std::vector<GrowthChange> shrunk;   // those that have gone among them; most first
    std::vector<GrowthRename> renamed;  // largest first
};

struct GrowthLimits {
    std::size_t most = 20;                   // of each list
    std::int64_t worthTelling = 10'000'000;  // bytes; at least ten times what a snapshot keeps
};

/// Tells each change of the deepest folder that explains it. A parent is told only for what its
/// folders do not explain, or for many that are each a small part of what happened in it.
Growth compareGrowth(const GrowthSnapshot& earlier, const GrowthSnapshot& later,
                     const GrowthLimits& limits = {});

/// By how much each folder directly inside `path` has changed, by its name, in what both have
/// measured. Of a folder that one of them lacks only what is worth telling; the others are unknown
/// and left out.
std::map<std::string, std::int64_t> growthInside(const GrowthSnapshot& earlier,
                                                 const GrowthSnapshot& later,
                                                 const std::string& path,
                                                 const GrowthLimits& limits = {});

}  // namespace velto
