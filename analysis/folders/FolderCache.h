#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "analysis/folders/FolderTree.h"
#include "platform/FileManager.h"
#include "platform/HomeLayout.h"

namespace velto {

/// The folders of an analysis. Never changed once it is shared.
struct MeasuredFolders {
    std::shared_ptr<const FolderTree> tree;  // never null
    double measured = 0;                     // seconds since 1970 when the analysis was made
    std::int64_t hiddenBytes = 0;            // of files that are in no category
};

/// The form in which folders are kept: a line that names it and its version, numbers and names one
/// after another, and a checksum. No byte of it is NUL, as in every file of the program's own.
namespace folder_file {

std::string encode(const MeasuredFolders& folders);

/// Nothing for what `encode` has not written whole, of any other version, or for another home.
std::shared_ptr<const MeasuredFolders> decode(std::string_view content, std::string_view home);

}  // namespace folder_file

/// Keeps the folders of the last finished analysis beside it on disk. Blocking; of several threads
/// one at a time.
class FolderCache {
public:
    FolderCache(FileManager& files, const HomeLayout& layout);

    /// Replaces what is stored. Silent when it cannot be saved, as the analysis itself is.
    void save(const MeasuredFolders& folders) const;

    /// What is stored; null when it is missing, unreadable, damaged or of another home.
    std::shared_ptr<const MeasuredFolders> load() const;

private:
    FileManager& files_;
    std::string folder_;
    std::string home_;
};

}  // namespace velto
