#include "cleaning/own_folder.h"

#include <cerrno>

#include "platform/values/text.h"

namespace velto {
namespace {

std::unique_ptr<FolderHandle> openIn(FileMover& mover, const FolderHandle& above,
                                     const std::string& path) {
    auto folder = mover.openFolder(above, std::string(lastPathComponent(path)));
    if (!mover.isOwnFolder(*folder, above)) throw FileError("open folder", path, EPERM);
    return folder;
}

bool isMissing(FileMover& mover, const FolderHandle& above, const std::string& path) {
    return !mover.attributes(above, std::string(lastPathComponent(path)));
}

}  // namespace

std::unique_ptr<FolderHandle> openFolderAbove(FileMover& mover, const std::string& path) {
    try {
        return mover.openFolder(parentFolder(path), FolderPath::throughLinks);
    } catch (const FileError& error) {
        if (error.code() == ENOENT || error.code() == ENOTDIR) return nullptr;
        throw;
    }
}

std::unique_ptr<FolderHandle> openOwnFolder(FileMover& mover, const std::string& path) {
    const auto above = openFolderAbove(mover, path);
    if (!above) return nullptr;
    try {
        return openIn(mover, *above, path);
    } catch (const FileError& error) {
        if (error.code() != ENOENT) throw;
        if (isMissing(mover, *above, path)) return nullptr;
    }
    return openIn(mover, *above, path);  // made between the two looks
}

std::unique_ptr<FolderHandle> makeOwnFolder(FileMover& mover, const std::string& path) {
    const auto above = mover.openFolder(parentFolder(path), FolderPath::throughLinks);
    try {
        return openIn(mover, *above, path);
    } catch (const FileError& error) {
        if (error.code() != ENOENT) throw;
    }
    try {
        mover.makeFolder(*above, std::string(lastPathComponent(path)));
    } catch (const FileError& error) {
        if (error.code() != EEXIST) throw;  // else another process was faster
    }
    return openIn(mover, *above, path);
}

}  // namespace velto
