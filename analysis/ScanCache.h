#pragma once

#include <optional>
#include <string>

#include "analysis/DiskState.h"
#include "platform/FileManager.h"
#include "platform/HomeLayout.h"

namespace velto {

/// Keeps the last finished analysis on disk, so that the next start can show it at once. Main
/// thread.
class ScanCache {
public:
    struct Entry {
        double ts = 0;  // seconds since 1970 when the analysis finished
        DiskState state;
    };

    ScanCache(FileManager& files, const HomeLayout& layout);

    /// The cache file; its folder is made first (a failure to make it is ignored: saving will fail
    /// the same way and is silent too).
    std::string location() const;

    /// Replaces the stored analysis. Silent when it cannot be saved: the analysis is still shown,
    /// it is only not remembered.
    void save(const DiskState& state, double ts) const;

    /// The stored analysis, however old; nothing when it is missing, unreadable or damaged.
    std::optional<Entry> load() const;

private:
    FileManager& files_;
    std::string folder_;
};

}  // namespace velto
