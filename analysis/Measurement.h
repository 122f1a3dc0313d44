#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "analysis/folders/FolderTree.h"
#include "platform/VolumeInfo.h"

namespace velto {

/// What an analysis has measured, what it has not, and why: the parts of which the used space is
/// made. All figures are bytes.
struct Measurement {
    struct Unreadable {
        std::int64_t count = 0;          // entries
        std::vector<std::string> paths;  // of folders that are, or hold, some of them; not all

        bool operator==(const Unreadable&) const = default;
    };
    struct Compared {
        bool complete = true;
        std::int64_t left = 0;  // files that may be copies and were not compared

        bool operator==(const Compared&) const = default;
    };

    std::int64_t total = 0;
    std::int64_t free = 0;
    std::int64_t reserved = 0;   // free, and no ordinary user can write it: no part of `free`
    std::int64_t purgeable = 0;  // part of `free` that the system still has to give back
    std::int64_t home = 0;       // in the categories
    std::optional<std::int64_t> hidden;  // measured besides; nothing when it was not told apart
    std::vector<MountedVolume> volumes;  // other file systems in the home, not measured
    std::vector<std::string> withheld;   // kept from programs without Full Disk Access
    std::vector<std::string> excluded;   // by the user
    Unreadable unreadable;
    Compared compared;

    /// Used space that lies in none of the above: the system, other users, what was not measured.
    std::int64_t outside() const;

    bool operator==(const Measurement&) const = default;
};

/// The parts that the folders tell: what is measured and in no category (hidden files, of
/// `hiddenBytes`, and the folders themselves), and where it could not be read. In the categories a
/// file with several names counts for each of them; here its space counts once.
void addFolders(Measurement& measurement, const FolderTree& folders, std::int64_t hiddenBytes);

/// As the page is told; what was not told apart has no key. Volumes of unknown size have no bytes.
nlohmann::json toJson(const Measurement& measurement);

/// Strict: a missing or mistyped field throws nlohmann::json::exception.
Measurement measurementFromJson(const nlohmann::json& object);

}  // namespace velto
