#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>

namespace velto {

/// The system calls through which files are changed, one virtual function each, so that a test can
/// let any single one fail or end the process before or after it. Results and errors are those of
/// the calls themselves: -1 and `errno`. Safe from every thread.
class FileCalls {
public:
    virtual ~FileCalls() = default;

    virtual int open(int folder, const char* name, int flags, mode_t mode);
    virtual int stat(int folder, const char* name, struct stat& status);  // never follows a link
    virtual ssize_t read(int file, void* buffer, std::size_t size);
    virtual ssize_t write(int file, const void* data, std::size_t size);
    virtual int sync(int file);  // content and attributes reach the disk
    virtual int changeMode(int file, mode_t mode);
    virtual int makeFolder(int folder, const char* name, mode_t mode);
    virtual int remove(int folder, const char* name, int flags);  // flags of unlinkat
    /// Renames, replacing what stands at the target.
    virtual int replace(int fromFolder, const char* from, int toFolder, const char* to);
};

/// The calls of this machine.
FileCalls& systemFileCalls();

}  // namespace velto
