#pragma once

#include <cstdint>
#include <string>

#include "platform/FileManager.h"
#include "platform/HomeLayout.h"

namespace velto {

/// True for the errors of a disk that has no room left, or none for this user.
bool isForSpace(const FileError& error);

/// The file "Trash.reserve" beside the trash folder: space that is given back to a full disk so
/// that the records of a change can be written. What a change moves needs none. Its content cannot
/// be compressed nor shared, and it is removed rather than written over: where every write goes to
/// new blocks only a removal gives any back. Used under the trash's lock.
class TrashReserve {
public:
    TrashReserve(FileManager& files, const HomeLayout& layout)
        : files_(files), path_(layout.trashFolder + ".reserve") {}

    /// Gives the space back. False when there is none to give.
    bool release();

    /// Keeps enough for records as long as `records` (bytes), or on a disk that has not as much
    /// what it has. Never throws.
    void keep(std::int64_t records);

    /// Runs `action`, and once more after giving the space back when that failed for want of it.
    template <typename Action>
    auto sparing(Action action) -> decltype(action()) {
        try {
            return action();
        } catch (const FileError& error) {
            if (!isForSpace(error) || !release()) throw;
        }
        return action();
    }

private:
    FileManager& files_;
    std::string path_;
};

}  // namespace velto
