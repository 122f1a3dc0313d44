#pragma once

#include "platform/ToolRunner.h"

namespace velto {

/// Lets flatpak remove the runtimes that no installed application uses, of the user or of all
/// users. Which these are only flatpak knows. Blocking, on any thread but the main one; throws
/// PackageError.
void removeUnusedRuntimes(ToolRunner& tools, bool ofAllUsers);

}  // namespace velto
