#include "analysis/folders/FolderCache.h"

namespace velto {
namespace {

constexpr const char* foldersFile = "/folders.bin";
constexpr ReadLimit foldersLimit = ownFile(1LL << 30);  // some twenty million folders

}  // namespace

FolderCache::FolderCache(FileManager& files, const HomeLayout& layout)
    : files_(files), folder_(layout.dataFolder), home_(layout.home) {}

void FolderCache::save(const MeasuredFolders& folders) const {
    try {
        files_.createFolders(folder_);
        files_.writeAtomically(folder_ + foldersFile, folder_file::encode(folders));
    } catch (const FileError&) {
        // Not remembered; the folders are shown all the same.
    }
}

std::shared_ptr<const MeasuredFolders> FolderCache::load() const {
    try {
        return folder_file::decode(files_.read(folder_ + foldersFile, foldersLimit), home_);
    } catch (const FileError&) {
        return nullptr;  // never saved, or out of reach
    }
}

}  // namespace velto
