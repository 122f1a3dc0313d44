#include "platform/attribute_buffer.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/values/units.h"

namespace velto::attributes {
namespace {

/// Takes fields off the front of a record. Fields are aligned to four bytes only, so they are
/// copied out. Reading past the end yields zeros and is remembered.
class FieldReader {
public:
    explicit FieldReader(std::span<const std::byte> record) : record_(record) {}

    template <typename Value>
    Value next() {
        Value value{};
        if (record_.size() - position_ < sizeof value) {
            complete_ = false;
            return value;
        }
        std::memcpy(&value, record_.data() + position_, sizeof value);
        position_ += sizeof value;
        return value;
    }

    /// A text stored elsewhere in the record: an offset from this field's own place, and a length
    /// that counts the closing NUL.
    std::string_view nextText() {
        const std::size_t place = position_;
        const auto offset = next<std::int32_t>();
        const auto length = next<std::uint32_t>();
        const auto room = static_cast<std::int64_t>(record_.size() - place);
        if (!complete_ || offset < 0 || std::int64_t{offset} + std::int64_t{length} > room) {
            complete_ = false;
            return {};
        }
        const auto* start = reinterpret_cast<const char*>(record_.data()) + place + offset;
        const std::string_view text(start, length);
        return text.substr(0, text.find('\0'));
    }

    double nextTime() {
        const auto seconds = next<std::int64_t>();
        const auto nanoseconds = next<std::int64_t>();
        return momentOf(seconds, nanoseconds);
    }

    bool complete() const { return complete_; }

private:
    std::span<const std::byte> record_;
    std::size_t position_ = 0;
    bool complete_ = true;
};

struct ReturnedSet {
    std::uint32_t common, volume, folder, file, fork;
};

bool onlyRequested(const ReturnedSet& returned) {
    return (returned.common & ~requestedCommon) == 0 && (returned.file & ~requestedFile) == 0 &&
           (returned.folder & ~requestedFolder) == 0 && returned.volume == 0 && returned.fork == 0;
}

EntryKind kindOf(std::uint32_t type) {
    switch (type) {
        case typeRegular:
            return EntryKind::regular;
        case typeFolder:
            return EntryKind::folder;
        case typeSymbolicLink:
            return EntryKind::symbolicLink;
        default:
            return EntryKind::other;
    }
}

bool isLeftOut(const DirectoryEntry& entry, const ReadOptions& options) {
    if (entry.name == "." || entry.name == "..") return true;
    if (!options.skipHidden) return false;
    if (entry.name.starts_with('.')) return true;
    if (!entry.hiddenFlag) return false;
    return options.keepFlagged == nullptr ||
           std::find(options.keepFlagged->begin(), options.keepFlagged->end(), entry.name) ==
               options.keepFlagged->end();
}

}  // namespace

std::optional<Record> parseRecord(std::span<const std::byte> bytes) {
    const auto length = FieldReader(bytes).next<std::uint32_t>();
    if (length == 0 || length > bytes.size()) return std::nullopt;

    FieldReader fields(bytes.first(length));
    fields.next<std::uint32_t>();  // the length
    const auto returned = fields.next<ReturnedSet>();
    if (!onlyRequested(returned)) return std::nullopt;
    const auto common = [&](std::uint32_t attribute) { return (returned.common & attribute) != 0; };
    const auto file = [&](std::uint32_t attribute) { return (returned.file & attribute) != 0; };

    // The order is the system's: the error comes first, then by rising bit; folders'
    // attributes before files', and no entry has both.
    Record record{.length = length, .entry = {}};
    DirectoryEntry& entry = record.entry;
    const auto error = common(commonError) ? fields.next<std::uint32_t>() : 0;
    if (common(commonName)) entry.name = fields.nextText();
    const auto type = common(commonObjectType) ? fields.next<std::uint32_t>() : 0;
    const double modified = common(commonModificationTime) ? fields.nextTime() : 0;
    const double accessed = common(commonAccessTime) ? fields.nextTime() : 0;
    const auto flags = common(commonFlags) ? fields.next<std::uint32_t>() : 0;
    const auto inode = common(commonFileIdentifier) ? fields.next<std::uint64_t>() : 0;
    const auto folder = (returned.folder & folderDataLength) != 0 ? fields.next<std::int64_t>() : 0;
    const auto links = file(fileLinkCount) ? fields.next<std::uint32_t>() : 1;
    const auto allocated = file(fileAllocatedSize) ? fields.next<std::int64_t>() : -1;
    const auto logical = file(fileDataLength) ? fields.next<std::int64_t>() : 0;
    if (!fields.complete() || entry.name.empty()) return std::nullopt;

    entry.hiddenFlag = (flags & flagHidden) != 0;
    // A name with a slash would lead out of its folder; only a damaged file system has one.
    const bool readable =
        error == 0 && common(commonObjectType) && entry.name.find('/') == std::string_view::npos;
    entry.kind = readable ? kindOf(type) : EntryKind::unreadable;
    if (entry.kind == EntryKind::unreadable) return record;
    entry.logicalSize =
        std::max<std::int64_t>(entry.kind == EntryKind::folder ? folder : logical, 0);
    if (entry.kind != EntryKind::folder) {
        entry.allocatedSize = std::max<std::int64_t>(allocated, -1);
        entry.modified = modified;
        entry.accessed = accessed;
        entry.inode = inode;
        entry.links = std::max<std::uint32_t>(links, 1);
    }
    return record;
}

bool appendRecords(std::span<const std::byte> bytes, std::size_t count, const ReadOptions& options,
                   EntryList& entries) {
    for (; count > 0; --count) {
        const auto record = parseRecord(bytes);
        if (!record) return false;
        bytes = bytes.subspan(record->length);
        if (isLeftOut(record->entry, options)) continue;
        DirectoryEntry& added = entries.add(record->entry.name);
        const std::string_view stored = added.name;
        added = record->entry;
        added.name = stored;
        if (added.kind == EntryKind::regular || options.allocatedOfEveryFile) continue;
        added.allocatedSize = -1;
        added.modified = 0;
        added.accessed = 0;
        added.inode = 0;
        added.links = 1;
    }
    return true;
}

}  // namespace velto::attributes
