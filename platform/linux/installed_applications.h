#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/ApplicationIndex.h"

namespace velto {

/// The applications whose desktop entries lie in some folders. The entries are read again only when
/// something in a folder has been added, replaced or taken away. One thread at a time.
class InstalledApplications {
public:
    /// Fills in what the entry at a path says, but for `identifier` and `path`; nothing for an
    /// entry that starts no application, or none that is shown.
    using ReadEntry = std::function<std::optional<ListedApplication>(const std::string& path)>;

    /// An entry in an earlier folder hides one of the same name in a later one.
    InstalledApplications(std::vector<std::string> folders, ReadEntry read)
        : folders_(std::move(folders)), read_(std::move(read)) {}

    /// The same object until something has changed.
    std::shared_ptr<const ApplicationIndex> index();

private:
    std::vector<std::int64_t> changes() const;

    std::vector<std::string> folders_;
    ReadEntry read_;
    std::vector<std::int64_t> changesRead_;  // of each folder, in nanoseconds; 0 without one
    std::shared_ptr<const ApplicationIndex> index_;
};

}  // namespace velto
