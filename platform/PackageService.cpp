#include "platform/PackageService.h"

namespace velto {

void requireFlatpaksSuccess(const ToolResult& ended) {
    if (!ended.started) throw PackageError(PackageError::Reason::unavailable, ended.startError);
    if (ended.exitStatus == 0) return;
    // The tool's words for what polkit has not allowed.
    const bool isRefused = ended.standardError.find("not allowed") != std::string::npos;
    throw PackageError(isRefused ? PackageError::Reason::refused : PackageError::Reason::failed,
                       ended.standardError);
}

}  // namespace velto
