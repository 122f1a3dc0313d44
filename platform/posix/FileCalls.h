#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/BlockSharing.h"
#include "platform/posix/Descriptor.h"

namespace velto {

/// The system calls through which files are changed, one virtual function each, so that a test can
/// let any single one fail or end the process before or after it. Results and errors are those of
/// the calls themselves: -1 and `errno`. Safe from every thread.
///
/// Those marked "system" are defined in platform/linux and platform/macos.
class FileCalls {
public:
    virtual ~FileCalls() = default;

    virtual int open(int folder, const char* name, int flags, mode_t mode);
    virtual int stat(int folder, const char* name, struct stat& status);  // never follows a link
    /// What a path leads to, following links.
    virtual int statTarget(const char* path, struct stat& status);
    virtual int status(int file, struct stat& status);
    /// The mount on which a name lies, never following a link; with an empty name that of the open
    /// folder. A folder that was bound to another place is a mount of its own on the same volume,
    /// and a file system that numbers its parts as several volumes is one. System.
    virtual int mount(int folder, const char* name, std::uint64_t& mount);
    /// Whether anything could be mounted on a name or below it, by the system's own list: false
    /// only when nothing is. Looking through a whole tree is needed only where it says yes. System.
    virtual bool mayHoldMount(int folder, const char* name);
    /// A text that tells the volume of an open folder, and the part of it that is mounted there,
    /// from all others, also after it was taken out and put in again. Empty when nothing is known
    /// that stays the same. System.
    virtual int volume(int folder, std::string& identity);
    /// The most bytes that a name in an open folder may have, as the volume tells.
    virtual long longestName(int folder);
    /// An absolute path without links, "." and "..".
    virtual int resolve(const char* path, std::string& real);
    /// The names in a folder that was opened for reading, without "." and ".."; closes it.
    virtual int names(Descriptor folder, std::vector<std::string>& names);
    virtual ssize_t read(int file, void* buffer, std::size_t size);
    virtual ssize_t write(int file, const void* data, std::size_t size);
    virtual ssize_t readAt(int file, void* buffer, std::size_t size, off_t offset);
    virtual ssize_t writeAt(int file, const void* data, std::size_t size, off_t offset);
    /// The next offset with (SEEK_DATA) or without (SEEK_HOLE) content.
    virtual off_t seek(int file, off_t offset, int whence);
    virtual int resize(int file, off_t size);
    virtual int sync(int file);   // content and attributes reach the disk
    virtual int flush(int file);  // they reach the drive, which may still hold them back
    virtual int changeMode(int file, mode_t mode);
    virtual int changeMode(int folder, const char* name, mode_t mode);  // never follows a link
    virtual int changeOwner(int file, uid_t user, gid_t group);
    /// Access and modification time of an open file.
    virtual int setTimes(int file, const struct timespec (&times)[2]);
    /// The same of a name, never following a link.
    virtual int setTimes(int folder, const char* name, const struct timespec (&times)[2]);
    virtual int makeFolder(int folder, const char* name, mode_t mode);
    virtual int makeLink(const char* target, int folder, const char* name);
    virtual int readLink(int folder, const char* name, std::string& target);
    virtual int remove(int folder, const char* name, int flags);  // flags of unlinkat
    /// Renames, replacing what stands at the target.
    virtual int replace(int fromFolder, const char* from, int toFolder, const char* to);
    /// Renames in one step; EEXIST when something stands at the target, EINVAL or ENOTSUP when the
    /// file system cannot promise that. System.
    virtual int rename(int fromFolder, const char* from, int toFolder, const char* to);
    /// A second name of the same file (a link itself, not what it leads to); EEXIST as above.
    virtual int addName(int fromFolder, const char* from, int toFolder, const char* to);
    /// Copies at most `size` bytes at `offset` inside the kernel and returns how many; fails where
    /// that is not possible, and the content goes through this process instead. System.
    virtual ssize_t copyRange(int from, int to, off_t offset, std::size_t size);
    /// Copies extended attributes; fails when one of the user's own cannot be kept. What only the
    /// system may write is left out. System.
    virtual int copyAttributes(int from, int to);
    /// 1 when every extended attribute of `from` that a copy keeps for certain stands in `to` with
    /// the same value, 0 when one does not. System.
    virtual int holdsAttributes(int from, int to);
    /// Copies access lists and, where files have some, the user's flags (hidden and the like): what
    /// may forbid to change the file any further. System.
    virtual int copyAccess(int from, int to);
    /// Gives a file the time at which another one was made, where files have one that can be given
    /// (not on Linux). To be called after `setTimes`, which may change it. System.
    virtual int copyBirthTime(int from, int to);
    /// Whether what `seek` says of holes can be believed. System.
    virtual bool knowsHoles();
    /// What memory holds of a synced file is given up, as far as the system does that, so that the
    /// next to be read of it is what the disk has. System.
    virtual int dropCache(int file);
    virtual int lock(int file, int operation);  // flock
    /// Whether `to` could lie in the blocks of `from`; nothing is changed. Fails with ENOTSUP where
    /// their volume cannot do that, with EXDEV for two volumes, else with why not these files.
    /// System.
    virtual int mayShare(int from, int to);
    /// Compares the range in both files and lets `to` lie in the blocks of `from` there, in one
    /// step of the system. Returns the bytes that are common now, 0 where they differ. System;
    /// ENOTSUP on a Mac.
    virtual ssize_t shareRange(int from, int to, off_t offset, std::size_t size);
    /// See OwnSpace. ENOTSUP where the volume does not tell. System.
    virtual int ownSpace(int file, OwnSpace& space);
    /// 1 when both files lie in the same blocks, 0 when not. System.
    virtual int isOneWith(int file, int other);
    /// Makes a file of that name that lies in the blocks of an open one; EEXIST when something
    /// stands there. System.
    virtual int cloneTo(int file, int folder, const char* name);
    /// Lets two names stand for each other's file, in one step. System.
    virtual int exchange(int oneFolder, const char* one, int otherFolder, const char* other);
    /// 1 when somebody else than this process has the file open, 0 when not. System.
    virtual int isOpenElsewhere(int file);
};

/// The calls of this machine.
FileCalls& systemFileCalls();

}  // namespace velto
