#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "analysis/growth/GrowthSnapshot.h"
#include "platform/FileManager.h"
#include "platform/FileMover.h"
#include "platform/HomeLayout.h"

namespace velto {

/// The snapshots on disk, one file each in a folder of their own within the data folder. What
/// another process adds or removes meanwhile does no harm. Blocking; not on the main thread, safe
/// from every other one.
class GrowthStore {
public:
    GrowthStore(FileManager& files, FileMover& mover, const HomeLayout& layout);

    /// Adds one, and then takes away what is kept no longer. What is stored stays when this fails.
    /// Throws FileError; EFBIG for one that has no room.
    void add(const GrowthSnapshot& snapshot);

    /// The moments of what is stored, oldest first. Empty when it is out of reach.
    std::vector<std::int64_t> moments() const;

    /// Null for one that is missing, damaged or not the user's own.
    std::shared_ptr<const GrowthSnapshot> load(std::int64_t moment) const;

    /// Removes all. Throws FileError for the first that cannot be removed, after all others.
    void forget();

private:
    std::unique_ptr<FolderHandle> open() const;
    void removeAll(const FolderHandle& folder, const std::vector<std::int64_t>& moments);

    FileManager& files_;
    FileMover& mover_;
    std::string folder_;
};

}  // namespace velto
