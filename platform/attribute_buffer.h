#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/DirectoryReader.h"

/// The packed records that getattrlistbulk(2) of macOS returns for the entries of a folder. Reading
/// them is plain arithmetic on bytes, so it is done, and tested, on every system.
namespace velto::attributes {

// The values of <sys/attr.h>, <sys/vnode.h> and <sys/stat.h> on a Mac; MacDirectoryReader.mm
// asserts that they agree.
inline constexpr std::uint32_t commonName = 0x00000001;
inline constexpr std::uint32_t commonObjectType = 0x00000008;
inline constexpr std::uint32_t commonModificationTime = 0x00000400;
inline constexpr std::uint32_t commonAccessTime = 0x00001000;
inline constexpr std::uint32_t commonFlags = 0x00040000;
inline constexpr std::uint32_t commonFileIdentifier = 0x02000000;
inline constexpr std::uint32_t commonError = 0x20000000;
inline constexpr std::uint32_t commonReturned = 0x80000000;
inline constexpr std::uint32_t folderDataLength = 0x00000020;
inline constexpr std::uint32_t fileLinkCount = 0x00000001;
inline constexpr std::uint32_t fileAllocatedSize = 0x00000004;
inline constexpr std::uint32_t fileDataLength = 0x00000200;

inline constexpr std::uint32_t typeRegular = 1;
inline constexpr std::uint32_t typeFolder = 2;
inline constexpr std::uint32_t typeSymbolicLink = 5;
inline constexpr std::uint32_t flagHidden = 0x00008000;

/// What is asked for of every entry.
inline constexpr std::uint32_t requestedCommon =
    commonReturned | commonError | commonName | commonObjectType | commonModificationTime |
    commonAccessTime | commonFlags | commonFileIdentifier;
/// And of files besides; of folders only when their own size is wanted.
inline constexpr std::uint32_t requestedFile = fileLinkCount | fileAllocatedSize | fileDataLength;
inline constexpr std::uint32_t requestedFolder = folderDataLength;

struct Record {
    std::size_t length = 0;  // bytes from this record's start to the next one's
    DirectoryEntry entry;    // its name points into the bytes that were parsed
};

/// The record at the start of `bytes`. Nothing when it is cut short, points outside itself, has no
/// name, or holds attributes that were not asked for (where the others lie is then unknown). An
/// entry that the system could not read has the kind `unreadable`.
std::optional<Record> parseRecord(std::span<const std::byte> bytes);

/// Appends the entries of `count` records, without "." and ".." and without what `options` leaves
/// out. False when a record is not as it should be; the entries before it stay in the list.
bool appendRecords(std::span<const std::byte> bytes, std::size_t count, const ReadOptions& options,
                   EntryList& entries);

}  // namespace velto::attributes
