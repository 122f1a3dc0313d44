#pragma once

#include <optional>
#include <string>

#include "platform/Platform.h"
#include "platform/own_folder.h"
#include "settings/AppLanguage.h"

namespace velto {

/// Makes the data folder, for the user alone, and takes from other users what they may do in it and
/// in the folder of the settings. Removes what cut-off saves have left there, and puts aside what
/// stands in the place of files that the trash cannot do without. Each thing mended is a log line.
/// To run before anything else is read or written there.
///
/// Returns why the program must not go on: what another user could have put there would be
/// believed, or the folder is a link, through which a folder elsewhere would be emptied. A folder
/// that merely cannot be made is no reason: the program then works without remembering anything.
std::optional<UnsafeFolder> prepareOwnFolders(const Platform& platform);

/// What is wrong, and what the user can do about it.
std::string textOf(const UnsafeFolder& unsafe, const Platform& platform,
                   const AppLanguage& language);

/// Prepares the folders, or ends the program with that text.
void requireOwnFolders(Platform& platform);

}  // namespace velto
