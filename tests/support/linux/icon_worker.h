#pragma once

namespace velto {

/// The built `velto-icons`, for LinuxIcons.
inline constexpr const char* iconWorker = VELTO_ICON_WORKER;

}  // namespace velto
