#pragma once

#include <string>

#include "platform/ProcessTable.h"

namespace velto {

/// What the bundle at a path calls itself (its Info.plist). A name that it does not give is its
/// folder's without the extension; without an identifier that is empty. Never throws.
RunningApp bundleApplication(const std::string& path);

}  // namespace velto
