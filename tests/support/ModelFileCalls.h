#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/posix/FileCalls.h"
#include "support/ModelDisk.h"

namespace velto {

/// System calls on a `ModelDisk`, as one process makes them. Its descriptors are numbers above all
/// that the system hands out, so that closing one does nothing; locks are always granted, as there
/// is one process at a time. There are no extended attributes, access lists and holes.
class ModelFileCalls final : public FileCalls {
public:
    /// `disk` outlives the calls.
    explicit ModelFileCalls(ModelDisk& disk) : disk_(disk) {}

    int open(int folder, const char* name, int flags, mode_t mode) override;
    int stat(int folder, const char* name, struct stat& status) override;
    int statTarget(const char* path, struct stat& status) override;
    int status(int file, struct stat& status) override;
    int mount(int folder, const char* name, std::uint64_t& mount) override;
    bool mayHoldMount(int, const char*) override { return true; }
    int volume(int folder, std::string& identity) override;
    long longestName(int folder) override;
    int resolve(const char* path, std::string& real) override;
    int names(Descriptor folder, std::vector<std::string>& names) override;
    ssize_t read(int file, void* buffer, std::size_t size) override;
    ssize_t write(int file, const void* data, std::size_t size) override;
    ssize_t readAt(int file, void* buffer, std::size_t size, off_t offset) override;
    ssize_t writeAt(int file, const void* data, std::size_t size, off_t offset) override;
    off_t seek(int file, off_t offset, int whence) override;
    int resize(int file, off_t size) override;
    int sync(int file) override;
    int flush(int file) override;
    int changeMode(int file, mode_t mode) override;
    int changeMode(int folder, const char* name, mode_t mode) override;
    int changeOwner(int file, uid_t user, gid_t group) override;
    int setTimes(int file, const struct timespec (&times)[2]) override;
    int setTimes(int folder, const char* name, const struct timespec (&times)[2]) override;
    int makeFolder(int folder, const char* name, mode_t mode) override;
    int makeLink(const char* target, int folder, const char* name) override;
    int readLink(int folder, const char* name, std::string& target) override;
    int remove(int folder, const char* name, int flags) override;
    int replace(int fromFolder, const char* from, int toFolder, const char* to) override;
    int rename(int fromFolder, const char* from, int toFolder, const char* to) override;
    int addName(int fromFolder, const char* from, int toFolder, const char* to) override;
    ssize_t copyRange(int from, int to, off_t offset, std::size_t size) override;
    int copyAttributes(int from, int to) override;
    int holdsAttributes(int from, int to) override;
    int copyAccess(int from, int to) override;
    int copyBirthTime(int from, int to) override;
    int dropCache(int file) override;
    int lock(int file, int operation) override;

private:
    using Number = ModelDisk::Number;
    struct Handle {
        Number inode = 0;
        std::size_t offset = 0;
        int flags = 0;
    };

    Handle* handle(int file);
    bool reach(int folder, const char* path, bool followsLast, ModelDisk::Place& place);
    bool reachInode(int folder, const char* path, bool followsLast, Number& inode);
    /// The file behind a descriptor that was opened for that; 0 with `errno`.
    Number content(int file, bool writes);
    void fill(Number number, struct stat& status) const;
    int setTimes(Number number, const struct timespec (&times)[2]);
    ssize_t put(Number file, const void* data, std::size_t size, std::size_t offset);
    ssize_t get(Number file, void* buffer, std::size_t size, std::size_t offset) const;

    ModelDisk& disk_;
    std::vector<Handle> handles_;
};

}  // namespace velto
