#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/FileStamp.h"

namespace velto {

/// A part of a file, in bytes.
struct ByteRange {
    std::int64_t offset = 0;
    std::int64_t length = 0;

    std::int64_t end() const { return offset + length; }
    bool operator==(const ByteRange&) const = default;
};

/// Where a file lies.
struct FilePlace {
    std::uint64_t volume = 0;    // the number that the system gives it
    bool diskRotates = false;    // moving from place to place takes it milliseconds
    std::uint64_t position = 0;  // on a disk that rotates: grows along the disk; else 0

    bool operator==(const FilePlace&) const = default;
};

/// The content of one open regular file. Closing is the destructor's. One thread at a time.
class FileContent {
public:
    virtual ~FileContent() = default;

    /// Logical size at this moment, in bytes; -1 with `errno` set when it cannot be told.
    virtual std::int64_t size() const = 0;

    /// Which file it is and what tells whether it has changed; nothing when that cannot be told.
    virtual std::optional<FileStamp> stamp() const { return std::nullopt; }

    /// Reads at most `buffer.size()` bytes from `offset` on. Returns how many, 0 at the end of the
    /// file, -1 with `errno` set on failure. EINTR is the caller's to retry.
    virtual std::ptrdiff_t read(std::int64_t offset, std::span<std::byte> buffer) = 0;

    /// Before the first read, of who tells himself what is needed next: from here on the system
    /// reads nothing ahead unasked and, where it can be told so, keeps nothing in its cache that
    /// was not there already.
    virtual void readAsTold() {}

    /// What of a range is not in the system's cache, in ascending order; nothing where the system
    /// does not say. Reads nothing.
    virtual std::vector<ByteRange> notCached(ByteRange /*range*/) { return {}; }

    /// The range will be read soon. Does not wait for it.
    virtual void readAhead(ByteRange /*range*/) {}

    /// The range is of no more use to this program: it may leave the system's cache.
    virtual void forget(ByteRange /*range*/) {}
};

/// Opens files to read what is in them. Safe from every thread.
class FileContentReader {
public:
    virtual ~FileContentReader() = default;

    /// Null with `errno` set when the file cannot be opened. Only a regular file opens (a link, a
    /// pipe or a device that has taken a file's place does not), and opening never blocks on the
    /// other end of something. Where the system allows it, reading leaves the access time alone.
    virtual std::unique_ptr<FileContent> open(const std::string& path) = 0;

    /// The stamp of a regular file that stands there, without opening it; nothing for whatever
    /// `open` would not open by its kind, or when it cannot be told.
    virtual std::optional<FileStamp> stamp(const std::string& /*path*/) { return std::nullopt; }

    /// Where such a file lies; nothing when that cannot be told.
    virtual std::optional<FilePlace> place(const std::string& /*path*/) { return std::nullopt; }
};

/// The POSIX implementation, of every machine that this program runs on.
std::unique_ptr<FileContentReader> makeFileContentReader();

}  // namespace velto
