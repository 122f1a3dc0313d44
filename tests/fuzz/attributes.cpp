#include "platform/attribute_buffer.h"

#include <span>
#include <string>
#include <vector>

#include "fuzz/engine/Target.h"

namespace velto::fuzz {
namespace {

const std::vector<std::string> kept{"Library"};

/// The first byte is the number of records that the system says it has packed, the second what is
/// asked for; the records follow.
void judge(std::string_view input) {
    if (input.size() < 2) return;
    const auto count = static_cast<std::size_t>(static_cast<unsigned char>(input[0]));
    const ReadOptions options{.skipHidden = (input[1] & 1) != 0,
                              .keepFlagged = (input[1] & 2) != 0 ? &kept : nullptr};
    input.remove_prefix(2);
    // A buffer of its own, of just that size: reading past its end is seen.
    const std::vector<char> buffer(input.begin(), input.end());
    EntryList entries;
    attributes::appendRecords(std::as_bytes(std::span(buffer)), count, options, entries);
    require(entries.entries().size() <= count, "no more entries than records");
    for (const DirectoryEntry& entry : entries.entries()) {
        require(!entry.name.empty() && entry.name != "." && entry.name != "..", "a name");
        require(entry.kind == EntryKind::unreadable || entry.name.find('/') == std::string::npos,
                "a name that stays in its folder");
        require(entry.allocatedSize >= -1 && entry.logicalSize >= 0, "sizes");
        const bool isHidden =
            entry.name.starts_with('.') || (entry.hiddenFlag && entry.name != kept[0]);
        require(!options.skipHidden || !isHidden, "nothing hidden");
    }
}

const Registration registered("attributes", judge);

}  // namespace
}  // namespace velto::fuzz
