#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/DesktopEntry.h"
#include "platform/linux/ApplicationIndex.h"

namespace velto {

/// The applications whose desktop entries lie in some folders. The entries are read again only when
/// something in a folder has been added, replaced or taken away. One thread at a time.
class InstalledApplications {
public:
    using ReadEntry = std::function<std::optional<DesktopEntry>(const std::string& path)>;

    /// The file manager outlives the object. Which entries count, and which hide which, is what
    /// `desktopEntryFiles` says; those that are not shown to the user do not.
    InstalledApplications(const FileManager& files, std::vector<NamedLocation> folders,
                          ReadEntry read = readDesktopEntry)
        : files_(files), folders_(std::move(folders)), read_(std::move(read)) {}

    /// The same object until something has changed.
    std::shared_ptr<const ApplicationIndex> index();

private:
    std::vector<std::string> foldersWithEntries() const;
    std::vector<ListedApplication> readAll() const;

    const FileManager& files_;
    std::vector<NamedLocation> folders_;
    ReadEntry read_;
    std::vector<std::string> watched_;
    std::vector<std::int64_t> changesRead_;  // of each, in nanoseconds; 0 without one
    std::shared_ptr<const ApplicationIndex> index_;
};

}  // namespace velto
