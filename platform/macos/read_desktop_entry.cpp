#include "platform/DesktopEntry.h"

namespace velto {

std::optional<DesktopEntry> readDesktopEntry(const std::string&) { return std::nullopt; }

}  // namespace velto
