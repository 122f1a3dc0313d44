#include "platform/attribute_buffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace velto::attributes {
namespace {

/// Packs a record as the system does: the fields of the attributes it says it returned, then the
/// name, padded to eight bytes.
class RecordBuilder {
public:
    explicit RecordBuilder(std::string name) : name_(std::move(name)) {}

    RecordBuilder& error(std::uint32_t code) {
        common |= commonError;
        return put(error_, code);
    }
    RecordBuilder& type(std::uint32_t value) {
        common |= commonObjectType;
        return put(type_, value);
    }
    RecordBuilder& modified(std::int64_t seconds, std::int64_t nanoseconds = 0) {
        common |= commonModificationTime;
        put(modified_, seconds);
        return put(modified_, nanoseconds);
    }
    RecordBuilder& accessed(std::int64_t seconds, std::int64_t nanoseconds = 0) {
        common |= commonAccessTime;
        put(accessed_, seconds);
        return put(accessed_, nanoseconds);
    }
    RecordBuilder& flags(std::uint32_t value) {
        common |= commonFlags;
        return put(flags_, value);
    }
    RecordBuilder& inode(std::uint64_t number) {
        common |= commonFileIdentifier;
        return put(inode_, number);
    }
    RecordBuilder& links(std::uint32_t count) {
        file |= fileLinkCount;
        return put(links_, count);
    }
    RecordBuilder& folderLength(std::int64_t bytes) {
        folder |= folderDataLength;
        return put(folder_, bytes);
    }
    RecordBuilder& allocated(std::int64_t bytes) {
        file |= fileAllocatedSize;
        return put(allocated_, bytes);
    }
    RecordBuilder& logical(std::int64_t bytes) {
        file |= fileDataLength;
        return put(logical_, bytes);
    }

    std::vector<std::byte> bytes() const {
        const std::string after = type_ + modified_ + accessed_ + flags_ + inode_ + folder_ +
                                  links_ + allocated_ + logical_;
        std::string body = error_;
        if ((common & commonName) != 0) {
            const auto offset = nameOffset.value_or(static_cast<std::int32_t>(8 + after.size()));
            const auto nameSize = nameLength.value_or(static_cast<std::uint32_t>(name_.size() + 1));
            put(body, offset);
            put(body, nameSize);
        }
        body += after + name_ + '\0';
        while ((24 + body.size()) % 8 != 0)
            body += '\0';
        std::string record;
        put(record, length.value_or(static_cast<std::uint32_t>(24 + body.size())));
        for (const std::uint32_t set : {common, std::uint32_t{0}, folder, file, fork}) {
            put(record, set);
        }
        record += body;
        std::vector<std::byte> packed(record.size());
        std::memcpy(packed.data(), record.data(), record.size());
        return packed;
    }

    std::uint32_t common = commonReturned | commonName;
    std::uint32_t folder = 0;
    std::uint32_t file = 0;
    std::uint32_t fork = 0;
    std::optional<std::uint32_t> length;
    std::optional<std::int32_t> nameOffset;
    std::optional<std::uint32_t> nameLength;

private:
    template <typename Value>
    static void append(std::string& text, Value value) {
        char raw[sizeof value];
        std::memcpy(raw, &value, sizeof value);
        text.append(raw, sizeof raw);
    }
    template <typename Value>
    RecordBuilder& put(std::string& text, Value value) {
        append(text, value);
        return *this;
    }
    template <typename Value>
    void put(std::string& text, Value value) const {
        append(text, value);
    }

    std::string name_, error_, type_, modified_, accessed_, flags_, inode_, folder_, links_,
        allocated_, logical_;
};

RecordBuilder film() {
    return RecordBuilder("film.mov")
        .type(typeRegular)
        .modified(1'700'000'000, 500'000'000)
        .accessed(1'700'000'100)
        .flags(0)
        .allocated(5'000'003'584)
        .logical(5'000'000'001);
}

std::vector<std::byte> joined(const std::vector<std::vector<std::byte>>& records) {
    std::vector<std::byte> all;
    for (const auto& record : records)
        all.insert(all.end(), record.begin(), record.end());
    return all;
}

std::vector<std::string> names(const EntryList& list) {
    std::vector<std::string> found;
    for (const auto& entry : list.entries())
        found.emplace_back(entry.name);
    return found;
}

TEST(AttributeBuffer, FileKeepsItsSizesAndTimes) {
    const auto bytes = film().bytes();
    const auto record = parseRecord(bytes);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->length, bytes.size());
    EXPECT_EQ(record->entry.name, "film.mov");
    EXPECT_EQ(record->entry.kind, EntryKind::regular);
    EXPECT_EQ(record->entry.allocatedSize, 5'000'003'584);
    EXPECT_EQ(record->entry.logicalSize, 5'000'000'001);
    EXPECT_DOUBLE_EQ(record->entry.modified, 1'700'000'000.5);
    EXPECT_DOUBLE_EQ(record->entry.accessed, 1'700'000'100);
    EXPECT_FALSE(record->entry.hiddenFlag);
}

TEST(AttributeBuffer, KindsAreToldApart) {
    const auto kind = [](std::uint32_t type) {
        const auto bytes = RecordBuilder("x").type(type).bytes();
        return parseRecord(bytes)->entry.kind;
    };
    EXPECT_EQ(kind(typeFolder), EntryKind::folder);
    EXPECT_EQ(kind(typeSymbolicLink), EntryKind::symbolicLink);
    EXPECT_EQ(kind(7), EntryKind::other);  // a named pipe
}

TEST(AttributeBuffer, FoldersAndLinksHaveASizeOfTheirOwn) {
    const auto folder = RecordBuilder("Logs").type(typeFolder).flags(0).folderLength(320).bytes();
    ASSERT_TRUE(parseRecord(folder));
    EXPECT_EQ(parseRecord(folder)->entry.logicalSize, 320);
    EXPECT_EQ(parseRecord(folder)->entry.name, "Logs");
    const auto link = RecordBuilder("to").type(typeSymbolicLink).allocated(4096).logical(9).bytes();
    EXPECT_EQ(parseRecord(link)->entry.logicalSize, 9);
}

TEST(AttributeBuffer, WhatALinkTakesUpIsToldWhenItIsAskedFor) {
    const auto link = RecordBuilder("to")
                          .type(typeSymbolicLink)
                          .modified(7)
                          .inode(5)
                          .links(2)
                          .allocated(4096)
                          .bytes();
    const auto read = [&](const ReadOptions& options) {
        EntryList list;
        EXPECT_TRUE(appendRecords(link, 1, options, list));
        return list.entries().at(0);
    };
    EXPECT_EQ(read({}).allocatedSize, -1);
    EXPECT_EQ(read({}).modified, 0);
    EXPECT_EQ(read({}).links, 1u);
    const DirectoryEntry asked = read({.allocatedOfEveryFile = true});
    EXPECT_EQ(asked.allocatedSize, 4096);
    EXPECT_EQ(asked.modified, 7);
    EXPECT_EQ(asked.inode, 5u);
    EXPECT_EQ(asked.links, 2u);
}

TEST(AttributeBuffer, AFileKeepsItsInodeAndTheNumberOfItsNames) {
    const auto bytes = film().inode(0xFFFF'FFFF'0000'0007).links(3).bytes();
    const auto record = parseRecord(bytes);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->entry.inode, 0xFFFF'FFFF'0000'0007);
    EXPECT_EQ(record->entry.links, 3u);
    EXPECT_EQ(record->entry.allocatedSize, 5'000'003'584) << "the fields after them";
    EXPECT_EQ(record->entry.logicalSize, 5'000'000'001);
    EXPECT_EQ(parseRecord(film().bytes())->entry.links, 1u) << "where the system does not say";
}

TEST(AttributeBuffer, FileSystemThatReportsLessIsStillRead) {
    const auto bytes = RecordBuilder("a.txt").type(typeRegular).logical(12).bytes();
    const auto record = parseRecord(bytes);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->entry.kind, EntryKind::regular);
    EXPECT_EQ(record->entry.allocatedSize, -1);
    EXPECT_EQ(record->entry.logicalSize, 12);
    EXPECT_EQ(record->entry.modified, 0);
}

TEST(AttributeBuffer, UnreadableEntryIsCountedNotTakenForAFile) {
    const auto failed = RecordBuilder("locked").error(13).bytes();
    EXPECT_EQ(parseRecord(failed)->entry.kind, EntryKind::unreadable);
    const auto withoutType = RecordBuilder("odd").bytes();
    EXPECT_EQ(parseRecord(withoutType)->entry.kind, EntryKind::unreadable);
    const auto fine = film().error(0).bytes();
    EXPECT_EQ(parseRecord(fine)->entry.kind, EntryKind::regular);
}

TEST(AttributeBuffer, SizesBelowZeroNeverReachTheTotals) {
    const auto bytes = RecordBuilder("a").type(typeRegular).allocated(-9).logical(-9).bytes();
    EXPECT_EQ(parseRecord(bytes)->entry.allocatedSize, -1);
    EXPECT_EQ(parseRecord(bytes)->entry.logicalSize, 0);
}

TEST(AttributeBuffer, RecordCutShortAnywhereIsRefused) {
    const auto whole = film().bytes();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<long>(size));
        EXPECT_FALSE(parseRecord(cut)) << size;
    }
}

TEST(AttributeBuffer, RecordThatClaimsTooFewBytesIsRefused) {
    for (std::uint32_t length = 0; length < film().bytes().size() - 8; ++length) {
        auto record = film();
        record.length = length;
        EXPECT_FALSE(parseRecord(record.bytes())) << length;
    }
}

TEST(AttributeBuffer, RecordThatClaimsTooManyBytesIsRefused) {
    auto record = film();
    record.length = 0xFFFFFFFF;
    EXPECT_FALSE(parseRecord(record.bytes()));
}

TEST(AttributeBuffer, NameThatPointsOutsideItsRecordIsRefused) {
    const auto refused = [](std::int32_t offset, std::uint32_t length) {
        auto record = film();
        record.nameOffset = offset;
        record.nameLength = length;
        return !parseRecord(record.bytes());
    };
    EXPECT_TRUE(refused(-8, 4));
    EXPECT_TRUE(refused(std::numeric_limits<std::int32_t>::min(), 4));
    EXPECT_TRUE(refused(std::numeric_limits<std::int32_t>::max(), 4));
    EXPECT_TRUE(refused(8, 0xFFFFFFFF));
    EXPECT_TRUE(refused(4096, 1));
    EXPECT_TRUE(refused(16, 0));  // an empty name
}

TEST(AttributeBuffer, NameEndsAtItsNulOrItsLength) {
    auto record = RecordBuilder("film").type(typeRegular);
    record.nameLength = 3;  // without the closing NUL
    const auto bytes = record.bytes();
    EXPECT_EQ(parseRecord(bytes)->entry.name, "fil");
}

TEST(AttributeBuffer, RecordWithoutNameIsRefused) {
    auto record = film();
    record.common &= ~commonName;
    EXPECT_FALSE(parseRecord(record.bytes()));
}

TEST(AttributeBuffer, AttributeThatWasNotAskedForIsRefused) {
    auto common = film();
    common.common |= 0x00000002;
    EXPECT_FALSE(parseRecord(common.bytes()));
    auto file = film();
    file.file |= 0x00000002;
    EXPECT_FALSE(parseRecord(file.bytes()));
    auto fork = film();
    fork.fork = 1;
    EXPECT_FALSE(parseRecord(fork.bytes()));
}

TEST(AttributeBuffer, NameWithASlashLeadsNowhere) {
    const auto bytes = RecordBuilder("../../etc").type(typeFolder).bytes();
    EXPECT_EQ(parseRecord(bytes)->entry.kind, EntryKind::unreadable);
}

TEST(AttributeBuffer, EveryRecordOfAFolderIsListedOnce) {
    const auto bytes = joined({RecordBuilder(".").type(typeFolder).bytes(),
                               RecordBuilder("..").type(typeFolder).bytes(), film().bytes(),
                               RecordBuilder("Fotos").type(typeFolder).bytes()});
    EntryList list;
    EXPECT_TRUE(appendRecords(bytes, 4, {}, list));
    EXPECT_EQ(names(list), (std::vector<std::string>{"film.mov", "Fotos"}));
    EXPECT_EQ(list.entries()[0].logicalSize, 5'000'000'001);
    EXPECT_EQ(list.entries()[1].kind, EntryKind::folder);
}

TEST(AttributeBuffer, NamesOutliveTheBuffer) {
    EntryList list;
    {
        auto bytes = film().bytes();
        EXPECT_TRUE(appendRecords(bytes, 1, {}, list));
        std::fill(bytes.begin(), bytes.end(), std::byte{0xFF});
    }
    EXPECT_EQ(names(list), std::vector<std::string>{"film.mov"});
}

TEST(AttributeBuffer, HiddenEntriesAreLeftOutWhenAsked) {
    const auto bytes = joined({RecordBuilder(".ssh").type(typeFolder).bytes(),
                               RecordBuilder("Library").type(typeFolder).flags(flagHidden).bytes(),
                               RecordBuilder("secret").type(typeFolder).flags(flagHidden).bytes(),
                               RecordBuilder(".Library").type(typeFolder).flags(flagHidden).bytes(),
                               RecordBuilder("Music").type(typeFolder).flags(0x20).bytes()});
    const std::vector<std::string> kept{"Library", ".Library"};
    EntryList list;
    EXPECT_TRUE(appendRecords(bytes, 5, {.skipHidden = true, .keepFlagged = &kept}, list));
    EXPECT_EQ(names(list), (std::vector<std::string>{"Library", "Music"}));
    list.clear();
    EXPECT_TRUE(appendRecords(bytes, 5, {.skipHidden = true}, list));
    EXPECT_EQ(names(list), std::vector<std::string>{"Music"});
    list.clear();
    EXPECT_TRUE(appendRecords(bytes, 5, {}, list));
    EXPECT_EQ(list.entries().size(), 5u);
}

TEST(AttributeBuffer, DamagedRecordEndsTheListingAndKeepsWhatCameBefore) {
    auto damaged = RecordBuilder("b").type(typeFolder);
    damaged.length = 7;
    const auto bytes = joined({film().bytes(), damaged.bytes(), film().bytes()});
    EntryList list;
    EXPECT_FALSE(appendRecords(bytes, 3, {}, list));
    EXPECT_EQ(names(list), std::vector<std::string>{"film.mov"});
}

TEST(AttributeBuffer, MoreRecordsThanBytesAreRefused) {
    const auto bytes = film().bytes();
    EntryList list;
    EXPECT_FALSE(appendRecords(bytes, 2, {}, list));
    EXPECT_EQ(list.entries().size(), 1u);
}

TEST(AttributeBuffer, NoBytesMakeItReadOutOfBounds) {
    // Every single-byte change of a good record either parses or is refused; the address sanitizer
    // watches the reads.
    const auto good = film().bytes();
    for (std::size_t place = 0; place < good.size(); ++place) {
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            auto changed = good;
            changed[place] = static_cast<std::byte>(value);
            const auto record = parseRecord(changed);
            if (!record) continue;
            EXPECT_LE(record->length, changed.size());
            const auto* start = reinterpret_cast<const char*>(changed.data());
            EXPECT_GE(record->entry.name.data(), start);
            EXPECT_LE(record->entry.name.data() + record->entry.name.size(),
                      start + changed.size());
        }
    }
}

}  // namespace
}  // namespace velto::attributes
