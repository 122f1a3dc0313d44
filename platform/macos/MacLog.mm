#include "platform/macos/MacLog.h"

#include <os/log.h>

#include "platform/Platform.h"

namespace velto {

void MacLog::line(std::string_view text) {
    static os_log_t log = os_log_create(programIdentifier, "velto");
    // Public: the log is this machine's own, and a redacted line explains nothing.
    os_log(log, "%{public}s", shown(text).c_str());
}

}  // namespace velto
