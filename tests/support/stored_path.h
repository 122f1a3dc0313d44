#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include "cleaning/TrashRecords.h"

namespace velto {

/// What lies in an item's place in the trash, found by its id alone; empty when nothing does.
inline std::string storedPath(const std::string& trash, const TrashItem& item) {
    std::error_code noFolder;
    const std::filesystem::directory_iterator operation(trash + "/" + item.opID, noFolder);
    for (const auto& entry : operation) {
        if (entry.path().filename().string().starts_with(item.id + "-")) return entry.path();
    }
    return {};
}

}  // namespace velto
