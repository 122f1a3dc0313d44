#pragma once

#include <string>
#include <string_view>

namespace velto {

/// `FileManager::writeAtomically` for a record whose latest state may be lost with the power: the
/// content is handed to the drive and not waited for until the drive has put it away, which takes a
/// Mac tens of milliseconds and its battery more. A reader sees the old or the new content whole.
/// Blocking; safe from every thread. Throws FileError.
void writeLightly(const std::string& path, std::string_view content);

}  // namespace velto
