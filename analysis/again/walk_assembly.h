#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "analysis/again/KeptWalk.h"
#include "analysis/again/NotingVisitor.h"
#include "analysis/folders/folder_assembly.h"

namespace velto {

/// What was noted on a walk, put together with what stayed of an earlier one.
struct AssembledWalk {
    KeptWalk walk;
    std::vector<std::uint32_t> places;  // in it, by the number of a folder that was read
};

/// What a walk leaves behind for its assembly, before its workers hand anything over.
struct NotedWalk {
    std::vector<const NotingVisitor*> visitors;
    std::vector<const FolderRecorder*> recorders;
    const std::vector<FolderRecording::Root>& roots;  // the home first
    FolderTreeBuilder::Number numbers = 0;            // that were given
    const EarlierWalk* earlier = nullptr;             // null for a walk of everything
};

/// Nothing when the parts do not add up to one walk: folders were moved while it was on its way, a
/// file has got names in folders that were not read, or figures are beyond counting. Its names are
/// the recorders' and the earlier walk's.
std::optional<AssembledWalk> assembleWalk(const NotedWalk& noted);

/// The tree of an assembled walk, and its hidden bytes. Takes the recorders' files of several
/// names.
AssembledFolders foldersOf(const AssembledWalk& assembled,
                           const std::vector<FolderRecorder*>& recorders);

}  // namespace velto
