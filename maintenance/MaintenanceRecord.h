#pragma once

#include <cstdint>
#include <optional>

#include "platform/FileManager.h"
#include "platform/HomeLayout.h"

namespace velto {

/// What the last maintenance pass did; kept in "maintenance.json" of the data folder for the page.
struct MaintenanceRecord {
    double ts = 0;           // seconds since 1970 when it ended
    double freed = 0;        // GB deleted for good
    std::int64_t moved = 0;  // items moved into the program's trash
    double movedGB = 0;

    bool operator==(const MaintenanceRecord&) const = default;
};

/// Nothing when no pass has ended yet, or when the file is damaged.
std::optional<MaintenanceRecord> lastMaintenance(const FileManager& files,
                                                 const HomeLayout& layout);

/// A failure is silent: the page then knows less.
void rememberMaintenance(FileManager& files, const HomeLayout& layout,
                         const MaintenanceRecord& record);

}  // namespace velto
