#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

/// A failed file operation: what was attempted, on what, and the system's reason.
class FileError : public std::runtime_error {
public:
    FileError(std::string attempt, std::string path, int code);
    /// With a reason in words where the system's would mislead.
    FileError(std::string attempt, std::string path, int code, const std::string& reason);

    const std::string& attempt() const { return attempt_; }  // "read", "create folder", ...
    const std::string& path() const { return path_; }
    int code() const { return code_; }  // errno

private:
    std::string attempt_;
    std::string path_;
    int code_;
};

/// What stands there is no file that may be read: of another kind, of another owner, too long, or
/// no text where a text is wanted. A file of the program's own that is refused counts as damaged,
/// and is replaced by the next save; one that only could not be read for the moment (EIO, EACCES)
/// is a plain FileError.
class RefusedFile : public FileError {
public:
    using FileError::FileError;
};

/// Something else is mounted at the path, which therefore neither goes nor is moved.
class SomethingMounted : public FileError {
public:
    SomethingMounted(const std::string& attempt, const std::string& path, int code)
        : FileError(attempt, path, code, "something else is mounted there") {}
};

/// Which files may be read.
enum class ReadFrom {
    ownFile,         // what the program has written: a text of the user's own; a link is refused
    ownThroughLink,  // the same, and a link may lead to it
    anyFile,         // a regular file of anybody, also through links
};

/// Never is more read, nor more memory taken, than `bytes`, also when the file grows meanwhile.
struct ReadLimit {
    ReadFrom from = ReadFrom::ownFile;
    std::int64_t bytes = 0;
};

constexpr ReadLimit ownFile(std::int64_t bytes) { return {ReadFrom::ownFile, bytes}; }
constexpr ReadLimit anyFile(std::int64_t bytes) { return {ReadFrom::anyFile, bytes}; }

enum class FileKind { regular, folder, symbolicLink, other };

/// Which file it is, whatever its name.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;  // inode

    bool operator==(const FileIdentity&) const = default;
};

struct FileAttributes {
    FileKind kind = FileKind::other;
    std::int64_t allocatedSize = 0;  // bytes on disk
    std::int64_t logicalSize = 0;    // bytes
    double modified = 0;             // seconds since 1970
    double accessed = 0;             // seconds since 1970
    FileIdentity identity{};
    std::uint32_t owner = 0;  // the user's number
};

/// Everything the program does to single files and folders. Paths are absolute byte strings.
/// Blocking; safe from every thread. Where a function says that it throws, it throws FileError.
class FileManager {
public:
    virtual ~FileManager() = default;

    /// True when something stands at `path`; a link counts by itself, whatever it leads to.
    virtual bool exists(const std::string& path) const = 0;

    /// The item's own attributes (links are not followed); nothing when they cannot be read.
    virtual std::optional<FileAttributes> attributes(const std::string& path) const = 0;

    /// The names directly inside a folder without "." and "..", in no order. Throws.
    virtual std::vector<std::string> list(const std::string& folder) const = 0;

    /// `path` with every symbolic link, "." and ".." resolved. Throws when nothing is there.
    virtual std::string resolved(const std::string& path) const = 0;

    /// The whole content of a regular file within the limit. Never waits for a pipe or a device.
    /// Throws, RefusedFile among others.
    virtual std::string read(const std::string& path, const ReadLimit& limit) const = 0;

    /// Replaces the file by way of a synced temporary file in the same folder: a reader sees the
    /// old or the new content whole, and a failure leaves the old file. Throws.
    virtual void writeAtomically(const std::string& path, std::string_view content) = 0;

    /// Makes the folder and its missing parents; one that exists already is fine. Throws.
    virtual void createFolders(const std::string& path) = 0;

    /// Removes a file, a link (never what it leads to) or a whole folder. Nothing there is no
    /// error. Throws at the first item that cannot be removed.
    virtual void removeAll(const std::string& path) = 0;
};

}  // namespace velto
