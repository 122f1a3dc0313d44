#pragma once

#include <string>
#include <vector>

#include "analysis/folders/FolderTree.h"
#include "analysis/growth/GrowthStore.h"
#include "platform/Platform.h"

namespace velto {

/// Keeps a snapshot of each finished analysis. Blocking; not on the main thread.
class GrowthKeeper {
public:
    /// The platform outlives it.
    explicit GrowthKeeper(const Platform& platform) : platform_(platform) {}

    /// `now` is when the analysis was finished, in seconds since 1970; `leftOut` is what the user
    /// had excluded from it. True when it is kept: why not is in the log, and does no harm to the
    /// analysis or to what is stored.
    bool keep(const FolderTree& tree, double now, std::vector<std::string> leftOut) const;

private:
    GrowthSnapshot fitting(const FolderTree& tree, GrowthFacts facts) const;

    const Platform& platform_;
};

}  // namespace velto
