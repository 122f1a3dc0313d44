#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cleaning/TrashRecords.h"
#include "platform/FileManager.h"
#include "platform/HomeLayout.h"

namespace velto {

/// What one change of the trash is about to do. Written before the first file is touched and
/// removed once the manifest tells of the change, so that whoever finds it knows what was cut off.
struct JournalEntry {
    enum class Kind {
        move,     // `operation`: its items go into the trash
        restore,  // `itemIDs`, or all of `operation.id` when empty: out of the trash, in order
        remove,   // `itemIDs`: for good; an item that resists stays listed
        purge,    // `itemIDs`: for good; an item that resists is forgotten all the same
        empty,    // everything, for good
    };

    Kind kind = Kind::move;
    Operation operation;
    std::vector<std::string> itemIDs;
    /// Restoring cannot be done in one step just now: the item and where it goes.
    struct Steps {
        std::string itemID;
        std::string target;

        bool operator==(const Steps&) const = default;
    };
    std::optional<Steps> steps;

    bool operator==(const JournalEntry&) const = default;
};

/// The file "Trash.journal" beside the trash folder: one entry, or nothing. Used under the trash's
/// lock.
class TrashJournal {
public:
    TrashJournal(FileManager& files, const HomeLayout& layout)
        : files_(files), path_(layout.trashFolder + ".journal") {}

    bool exists() const { return files_.exists(path_); }

    /// The entry; nothing when there is none or when the file is damaged. Throws FileError when it
    /// cannot be read.
    std::optional<JournalEntry> read() const;

    /// Replaces the entry, on the disk when this returns. Throws FileError.
    void write(const JournalEntry& entry);

    /// A failure leaves the entry; it is then found, and seen to be settled, by the next change.
    void clear();

private:
    FileManager& files_;
    std::string path_;
};

}  // namespace velto
