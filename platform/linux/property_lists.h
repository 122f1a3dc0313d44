#pragma once

namespace velto {

/// False where the program was built without libplist, which a Linux home has no need of:
/// `readPropertyList` then reads nothing.
bool readsPropertyLists();

}  // namespace velto
