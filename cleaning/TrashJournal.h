#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

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
        empty,    // `itemIDs`, which is all that is listed: for good
        rest,     // `operation`: its item is in the trash; its original is still to be cleared
        keep,     // `operation`: what the trash has of its item, given up, is listed as this item
        putBack,  // `operation`: the move of its item was given up; its original belongs in place
    };

    Kind kind = Kind::move;
    Operation operation;
    std::vector<std::string> itemIDs;
    /// Restoring cannot be done in one step just now: the item and where it goes.
    struct Steps {
        std::string itemID;
        std::string target;
        std::string volume{};  // of the folder that it goes to (FileMover::volumeOf)

        bool operator==(const Steps&) const = default;
    };
    std::optional<Steps> steps;
    /// By the items' ids, the volumes that they come from; only where that is not the trash's own.
    std::map<std::string, std::string> volumes{};

    bool operator==(const JournalEntry&) const = default;
};

/// The file "Trash.journal" beside the trash folder: one entry, or nothing. Beside it, in
/// "Trash.waiting", what was cut off and cannot be settled before a volume or a folder is back:
/// entries of one item each (`move`, `restore`, `rest`, `putBack`). Used under the trash's lock.
class TrashJournal {
public:
    TrashJournal(FileManager& files, const HomeLayout& layout)
        : files_(files),
          path_(layout.trashFolder + ".journal"),
          waitingPath_(layout.trashFolder + ".waiting") {}

    bool exists() const { return files_.exists(path_); }

    /// The entry; nothing when there is none or when the file is damaged. Throws FileError when it
    /// cannot be read.
    std::optional<JournalEntry> read() const;

    /// Replaces the entry, on the disk when this returns. Throws FileError.
    void write(const JournalEntry& entry);

    /// A failure leaves the entry; it is then found, and seen to be settled, by the next change.
    void clear();

    bool hasWaiting() const { return files_.exists(waitingPath_); }

    /// As `read`; empty when there are none.
    std::vector<JournalEntry> readWaiting() const;

    /// Replaces them, as `write`. Throws FileError.
    void writeWaiting(const std::vector<JournalEntry>& entries);

private:
    std::optional<nlohmann::json> readFile(const std::string& path) const;

    FileManager& files_;
    std::string path_;
    std::string waitingPath_;
};

}  // namespace velto
