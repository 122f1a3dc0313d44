#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileManager.h"

namespace velto {

/// An open folder. What is done through it happens in the very folder that was opened, even when
/// its path leads elsewhere by then. Closed with the object.
class FolderHandle {
public:
    virtual ~FolderHandle() = default;
};

/// An advisory lock, held against other processes and other holders in this one until the object
/// ends.
class FileLock {
public:
    virtual ~FileLock() = default;
};

/// One version of a file, held open. While the object lives no other file can be given its
/// identity, so a version that replaces it is always told apart.
class FileVersion {
public:
    virtual ~FileVersion() = default;

    /// The whole content. Throws, RefusedFile among others.
    virtual std::string read() = 0;

    /// True while the file at the path that it was opened from is this one, unchanged.
    virtual bool isCurrent() = 0;
};

enum class FolderPath {
    withoutLinks,         // a link anywhere in the path is refused: FileError with ELOOP
    createdWithoutLinks,  // the same, and missing folders are made, for the user alone
    throughLinks,         // links are followed
};

/// Where a moved item is.
enum class MoveState { atSource, atTarget, nowhere };

/// Moves and removes what must not get lost: through open folders, so that nothing is diverted when
/// a path leads elsewhere meanwhile, and never replacing anything. Names are single path
/// components; one that is empty, ".", ".." or that holds a slash or a NUL byte names nothing and
/// is refused (EINVAL). Blocking; safe from every thread. Where a function says that it throws, it
/// throws FileError.
class FileMover {
public:
    virtual ~FileMover() = default;

    /// Opens a folder at an absolute standardised path, component by component, so that the path
    /// may be of any length. Throws; the error names the folder on the way that stopped it.
    virtual std::unique_ptr<FolderHandle> openFolder(const std::string& path, FolderPath how) = 0;

    /// Opens a folder in an open one, never through a link. Throws.
    virtual std::unique_ptr<FolderHandle> openFolder(const FolderHandle& parent,
                                                     const std::string& name) = 0;

    /// True when `folder` belongs to this user, or to the same one as `other`: a volume may show
    /// everything on it as somebody else's.
    virtual bool isOwnFolder(const FolderHandle& folder, const FolderHandle& other) = 0;

    /// A text that tells the volume on which an open folder lies (and the part of it that is
    /// mounted there) from all others, also after it was taken out and put in again or the machine
    /// was started anew. Empty when the system does not say.
    virtual std::string volumeOf(const FolderHandle& folder) = 0;

    /// True when two open folders lie on one mount, and so on one volume. Costs less than telling
    /// which that is.
    virtual bool areOnOneMount(const FolderHandle& one, const FolderHandle& other) = 0;

    /// The most bytes that a name in the folder may have, as far as the volume tells: one that
    /// counts in other units may still refuse a shorter one (ENAMETOOLONG).
    virtual std::size_t longestName(const FolderHandle& folder) = 0;

    /// True when `folder` is `ancestor` or lies below it, by identity.
    virtual bool isAtOrBelow(const FolderHandle& folder, const FolderHandle& ancestor) = 0;

    /// The attributes of what a name stands for (links are not followed); nothing when nothing is
    /// there. Throws when that cannot be told.
    virtual std::optional<FileAttributes> attributes(const FolderHandle& folder,
                                                     const std::string& name) = 0;

    virtual std::vector<std::string> list(const FolderHandle& folder) = 0;

    /// As `FileManager::writeAtomically`, in that very folder. Throws.
    virtual void writeAtomically(const FolderHandle& folder, const std::string& name,
                                 std::string_view content) = 0;

    /// Makes one folder; throws EEXIST when something stands there.
    virtual void makeFolder(const FolderHandle& parent, const std::string& name) = 0;

    /// Moves in a single step: before it, and when it fails, the item is at its source; after it,
    /// at its target. Never replaces: throws EEXIST when something stands at the target. False when
    /// these two folders do not allow that (two volumes, or a file system that cannot promise not
    /// to replace); then only `moveInSteps` is left.
    virtual bool moveAtOnce(const FolderHandle& from, const std::string& name,
                            const FolderHandle& to, const std::string& newName) = 0;

    /// Moves in several steps, copying where the volumes differ: content, permissions, times,
    /// extended attributes, links as links; owner and group as far as allowed, and the time at
    /// which a file was made where the system can give one (a Mac; Linux has no way). Before the
    /// original goes, the copy is read from the disk and compared with it (EIO). Hard links among
    /// the files of a folder become files of their own, and sockets, devices and mounted volumes
    /// are refused. Never replaces. An item that changes while it is copied stays where it is
    /// (EBUSY). `scratch` is a name that nothing but moves of this item uses in either folder. On
    /// failure the item is at its source, or where `settleMove` with the same arguments brings it,
    /// which also restores order after a process that died in the middle. The item counts as moved
    /// once it is whole at its target; what cannot be removed of its source then stays in the
    /// source folder under a name that begins with the scratch name and is in no later move's way.
    /// Throws.
    virtual void moveInSteps(const FolderHandle& from, const std::string& name,
                             const FolderHandle& to, const std::string& newName,
                             const std::string& scratch) = 0;

    /// Undoes or completes what a cut-off `moveInSteps` has left, and tells where the item is.
    /// Harmless when nothing was cut off, and after `moveAtOnce`. The names may come from a file
    /// that somebody has tampered with: nothing is removed that does not stand elsewhere, alike in
    /// content and all else that a move keeps. Throws; EINVAL when the scratch name is one of the
    /// others.
    virtual MoveState settleMove(const FolderHandle& from, const std::string& name,
                                 const FolderHandle& to, const std::string& newName,
                                 const std::string& scratch) = 0;

    /// As above for a name; folders that their owner has made read-only are made writable first.
    virtual void removeAll(const FolderHandle& parent, const std::string& name) = 0;

    /// Removes a folder that holds nothing; false when it holds something or is not there. Throws.
    virtual bool removeEmptyFolder(const FolderHandle& parent, const std::string& name) = 0;

    /// Makes the folder's list of names reach the disk, where the folder may be read. Throws.
    virtual void sync(const FolderHandle& folder) = 0;

    /// Locks the file at `path`, made when missing. When somebody else holds it: null if `wait` is
    /// false, else waits for a while (`LockPatience`) and throws EWOULDBLOCK. A file system without
    /// locks grants it. Throws; EINVAL for anything but a regular file, ELOOP for a link.
    virtual std::unique_ptr<FileLock> lock(const std::string& path, bool wait) = 0;

    /// Holds the version of a file that is there now; null when there is none. Throws, RefusedFile
    /// among others.
    virtual std::unique_ptr<FileVersion> openVersion(const std::string& path,
                                                     const ReadLimit& limit) = 0;
};

}  // namespace velto
