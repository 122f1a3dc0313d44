#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "analysis/folders/FolderCache.h"
#include "analysis/folders/number_text.h"
#include "platform/values/text.h"

namespace velto::folder_file {
namespace {

using number_text::append;
using number_text::Reader;

using Entry = FolderTreeBuilder::Entry;

constexpr std::string_view heading = "Velto folders 1\n";
using number_text::checksumLength;
constexpr std::size_t shortestRecord = 8;  // a byte for each number, and none for the name
constexpr double stampUnit = 1e6;          // the stamp is kept in millionths of a second

struct Record {
    std::uint32_t folders = 0;  // directly inside
    std::string_view name;
    FolderFacts facts;
};

Record readRecord(Reader& reader) {
    Record record;
    record.folders = reader.number<std::uint32_t>();
    record.name = reader.text(reader.number<std::uint32_t>());
    record.facts.state = static_cast<FolderState>(
        reader.number(static_cast<std::uint64_t>(FolderState::alreadyWalked)));
    record.facts.inode = reader.number<std::uint64_t>();
    record.facts.ownBytes = reader.number<std::int64_t>();
    record.facts.ownFiles = reader.number<std::uint32_t>();
    record.facts.unreadable = reader.number<std::uint32_t>();
    record.facts.latest = reader.number<std::uint32_t>();
    return record;
}

/// A name leads to a place of its own below the folder above, and nowhere else.
bool isName(std::string_view name, bool isRoot) {
    if (!isRoot) return isComponent(name);
    return name.starts_with('/') && standardizedPath(name) == name;
}

/// The records, each after the one that holds it; those of one folder in the order of their names.
std::vector<Entry> readEntries(Reader& reader, std::uint32_t roots, std::uint32_t count) {
    std::vector<Entry> entries;
    if (count > reader.left() / shortestRecord || roots > count) return reader.fail(), entries;
    entries.resize(count);
    for (std::uint32_t index = roots; index < count; ++index)
        entries[index].parent = index;  // until its parent is known: none stands after it
    std::uint64_t next = roots;
    for (std::uint32_t index = 0; index < count && reader.isGood(); ++index) {
        const Record record = readRecord(reader);
        Entry& entry = entries[index];
        const bool isRoot = index < roots;
        const bool isKnown = isRoot || entry.parent < index;
        const bool isInOrder = isRoot || index == 0 || entries[index - 1].parent != entry.parent ||
                               entries[index - 1].name < record.name;
        if (!isKnown || !isInOrder || !isName(record.name, isRoot)) reader.fail();
        if (next + record.folders > count) reader.fail();
        if (!reader.isGood()) break;
        entry.number = index;
        entry.name = record.name;
        entry.facts = record.facts;
        for (std::uint32_t child = 0; child < record.folders; ++child)
            entries[next++].parent = index;
    }
    if (next != count || reader.left() != 0) reader.fail();
    return entries;
}

}  // namespace

std::string encode(const MeasuredFolders& folders) {
    const FolderTree& tree = *folders.tree;
    std::string text(heading);
    append(text, static_cast<std::int64_t>(std::llround(folders.measured * stampUnit)));
    append(text, folders.hiddenBytes);
    append(text, std::uint64_t{tree.rootCount()});
    append(text, std::uint64_t{tree.size()});
    for (FolderTree::Index index = 0; index < tree.size(); ++index) {
        const FolderFacts& facts = tree[index].own;
        const auto [first, last] = tree.children(index);
        append(text, std::uint64_t{last - first});
        append(text, std::uint64_t{tree.name(index).size()});
        text += tree.name(index);
        append(text, static_cast<std::uint64_t>(facts.state));
        append(text, facts.inode);
        append(text, facts.ownBytes);
        append(text, std::uint64_t{facts.ownFiles});
        append(text, std::uint64_t{facts.unreadable});
        append(text, std::uint64_t{facts.latest});
    }
    text += number_text::checksumOf(text);
    return text;
}

std::shared_ptr<const MeasuredFolders> decode(std::string_view content, std::string_view home) {
    if (content.size() < heading.size() + checksumLength || !content.starts_with(heading)) {
        return nullptr;
    }
    const std::string_view body = content.substr(0, content.size() - checksumLength);
    if (content.substr(body.size()) != number_text::checksumOf(body)) return nullptr;

    Reader reader(body.substr(heading.size()));
    auto folders = std::make_shared<MeasuredFolders>();
    folders->measured = static_cast<double>(reader.number<std::int64_t>()) / stampUnit;
    folders->hiddenBytes = reader.number<std::int64_t>();
    const auto roots = reader.number<std::uint32_t>();
    const auto count = reader.number<std::uint32_t>();
    std::vector<Entry> entries = readEntries(reader, roots, count);
    const bool isOwn = entries.empty() || entries.front().name == home;
    if (!reader.isGood() || !isOwn) return nullptr;
    folders->tree = std::make_shared<const FolderTree>(FolderTreeBuilder::build(entries));
    return folders;
}

}  // namespace velto::folder_file
