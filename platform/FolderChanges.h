#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/CancellationFlag.h"

namespace velto {

/// A moment in a volume's history of changes.
struct ChangeMark {
    std::string volume;       // identifies the history: another one says nothing of this mark
    std::uint64_t event = 0;  // counts up

    bool operator==(const ChangeMark&) const = default;
};

/// A folder of which entries have come, gone or changed.
struct FolderChange {
    std::string path;           // absolute; the folder itself may be gone by now
    bool withAllBelow = false;  // folders below it may have changed too, untold

    bool operator==(const FolderChange&) const = default;
};

/// What the system remembers of changes of folders, also of those made while the program did not
/// run. It may tell of a folder that is unchanged, never the reverse. What it does not tell by its
/// nature: that a file was read, what is written to a file that stays open, changes of a file by a
/// name in another folder, and what is mounted where.
class FolderChanges {
public:
    virtual ~FolderChanges() = default;

    /// The present moment on the volume of `folder`; nothing where no history is kept. A change
    /// that is made after the call belongs to what comes after the mark.
    virtual std::optional<ChangeMark> mark(const std::string& folder) = 0;

    /// The folders at, below and above `folder` that changed since a mark of its volume; nothing
    /// when that cannot be told for certain. Blocking, for some seconds at most; not on the main
    /// thread.
    virtual std::optional<std::vector<FolderChange>> since(const ChangeMark& mark,
                                                           const std::string& folder,
                                                           const CancellationFlag& cancelled) = 0;
};

/// This system's. On Linux it never can tell: no history is kept there, and watching every folder
/// of a home takes privileges or a watch for each.
std::unique_ptr<FolderChanges> makeFolderChanges();

}  // namespace velto
