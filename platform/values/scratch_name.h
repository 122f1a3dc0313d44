#pragma once

#include <string>
#include <string_view>

namespace velto {

/// The name under which a move in several steps keeps its copy and its original until it is over.
/// `moveID` is a UUID as `newUUID` makes it, or the id of an item of the trash.
std::string scratchName(std::string_view moveID);

/// True for the names that `scratchName` makes. One that was read from a file is used only then: no
/// file of the user's has such a name.
bool isScratchName(std::string_view name);

}  // namespace velto
