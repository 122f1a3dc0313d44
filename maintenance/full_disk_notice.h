#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "settings/AppLanguage.h"

namespace velto {

/// Whether a pass says that the disk gets full. Off until the user asks for it.
struct FullDiskNotice {
    bool isDue = false;
    double told = 0;  // what is remembered: seconds since 1970, 0 when there is room
};

/// `threshold` in GB, 0 for never; `available` in bytes, nothing when it is not known; `told` when
/// it was said last. A disk that stays full is told of once a week.
FullDiskNotice fullDiskNotice(std::int64_t threshold, std::optional<std::int64_t> available,
                              double told, double now);

std::string fullDiskTitle(const AppLanguage& language);
std::string fullDiskMessage(const AppLanguage& language, std::int64_t available);

}  // namespace velto
