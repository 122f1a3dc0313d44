#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "analysis/folders/FolderRecorder.h"

namespace velto {

/// What a walk's recorders have found, put together.
struct AssembledFolders {
    FolderTree tree;
    std::int64_t hiddenBytes = 0;  // of files that are in no category
};

/// Puts the tree together; of a file's several names the first in the byte order of paths counts.
/// Empties the recorders' records. `numbers` is how many numbers were given.
AssembledFolders assembleFolders(const std::vector<FolderRecorder*>& recorders,
                                 FolderTreeBuilder::Number numbers);

/// Builds the tree of the folders, each at its number; of a file's several names, which are not in
/// the folders' figures, the first in the byte order of paths counts. A folder without a name is
/// none.
void addTree(AssembledFolders& result, std::vector<FolderTreeBuilder::Entry> byNumber,
             std::vector<FolderRecorder::Linked> linked);

/// The folders that the recorders hold so far and have not left out.
WalkedFolders walkedFolders(const std::vector<FolderRecorder*>& recorders,
                            const std::vector<FolderRecording::Root>& roots,
                            FolderTreeBuilder::Number numbers);

/// Adds those that came after the first `counts` of each recorder, all on one device.
void addWalked(WalkedFolders& walked, const std::vector<FolderRecorder*>& recorders,
               const std::vector<std::size_t>& counts, std::uint64_t device);

}  // namespace velto
