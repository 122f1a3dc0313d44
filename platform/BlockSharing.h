#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/FileMover.h"
#include "platform/FileStamp.h"

namespace velto {

/// What comes back when a file's blocks are replaced by another file's.
struct OwnSpace {
    std::int64_t bytes = 0;  // of blocks that no other file and no snapshot has part of
    /// False where the system does not say how much a block takes up (compressed ones): then it is
    /// at most that.
    bool isExact = true;

    bool operator==(const OwnSpace&) const = default;
};

/// One open regular file, and the name by which it was opened. Closed with the object. What its
/// functions throw is FileError.
class SharedFile {
public:
    virtual ~SharedFile() = default;

    virtual FileStamp stamp() = 0;

    /// Throws ENOTSUP where the volume does not tell.
    virtual OwnSpace ownSpace() = 0;
};

/// Lets files of equal content lie in the same blocks of the disk. Both keep their names, owners,
/// times, access and attributes, and from then on a change of one gives it blocks of its own again.
/// Blocking; safe from every thread. What is thrown is FileError.
class BlockSharing {
public:
    enum class End {
        shared,
        differs,  // they are not alike (any more); the copy is as it was
        stopped,  // the caller wanted no more; what was shared until then stays so
    };

    /// Told after each piece: the bytes that lie in common blocks now. False ends it.
    using Progress = std::function<bool(std::int64_t bytes)>;

    virtual ~BlockSharing() = default;

    /// Opens a file by its name in an open folder, which outlives it. Only a regular file opens
    /// (EINVAL, ELOOP for a link), and nothing is waited for. Throws.
    virtual std::unique_ptr<SharedFile> open(const FolderHandle& folder,
                                             const std::string& name) = 0;

    /// Asked without changing anything. Throws: ENOTSUP when the volume cannot share, EXDEV for
    /// files of two volumes, EPERM or EACCES when the copy may not be changed, EMLINK when its
    /// further names would lose it, ETXTBSY or EBUSY when it is in use in a way that forbids it.
    virtual void requireSharable(SharedFile& kept, SharedFile& copy) = 0;

    /// True when both lie in the same blocks already. Throws.
    virtual bool isOneWith(SharedFile& kept, SharedFile& copy) = 0;

    /// Gives the copy the blocks of the kept file. They are compared in the same step in which they
    /// become one, or looked at again after it: at every instant the copy's name leads to its whole
    /// content, whatever fails and wherever the process ends. `scratch` is a name (`scratchName`)
    /// that nothing but this uses in the copy's folder. Throws as above; what was shared until then
    /// stays so.
    virtual End share(SharedFile& kept, SharedFile& copy, const std::string& scratch,
                      const Progress& progress) = 0;

    /// True where sharing makes something under the scratch name; then `settle` restores order
    /// after a process that died in the middle.
    virtual bool usesScratch() const { return false; }

    /// Removes what a cut-off `share` has left under the scratch name, once the same content stands
    /// at `name`. Throws EEXIST while another content stands there, and leaves both.
    virtual void settle(const FolderHandle& /*folder*/, const std::string& /*name*/,
                        const std::string& /*scratch*/) {}
};

/// The one of this machine.
std::unique_ptr<BlockSharing> makeBlockSharing();

}  // namespace velto
