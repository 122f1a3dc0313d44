#pragma once

#include <optional>
#include <string>

#include "cleaning/TrashRecords.h"
#include "platform/Platform.h"

namespace velto {

/// Why the program's trash would refuse what stands at `path` now; nothing when it would take it,
/// or when the system does not tell (moving it will). Changes nothing; safe from every thread.
std::optional<TrashError::Reason> trashRefusal(const Platform& platform, const std::string& path);

}  // namespace velto
