#include <cmath>
#include <memory>
#include <optional>
#include <unordered_set>

#include "cleaning/VeltoTrashService.h"
#include "platform/values/units.h"

namespace velto {
namespace {

/// Whole tenths of a gigabyte are what lists show: rounded, so nothing is known below them.
std::optional<std::int64_t> bytesOf(double gb) {
    constexpr std::int64_t tenth = 100'000'000;
    constexpr double most = 1e9;  // GB; a manifest may say anything
    if (!(gb > 0 && gb < most)) return std::nullopt;
    const std::int64_t bytes = std::llround(gb * bytesPerGigabyte);
    return bytes % tenth == 0 ? std::nullopt : std::optional(bytes);
}

}  // namespace

const std::map<std::string, std::int64_t>& VeltoTrashService::exactSizes() {
    std::unordered_set<std::string> held;
    std::unique_ptr<FolderHandle> operation;
    std::string opened;
    for (const TrashItem& item : items()) {
        held.insert(item.id);
        if (exactSizes_.contains(item.id)) continue;
        std::optional<std::int64_t> bytes = bytesOf(item.gb);
        try {
            if (item.opID != opened) {
                operation.reset();
                opened = item.opID;
                operation = folder_.openOperation(item.opID);
            }
            const auto found = folder_.attributes(operation.get(), item);
            if (found && found->kind == FileKind::regular) bytes = found->allocatedSize;
        } catch (const FileError&) {
            continue;  // out of reach for now; asked again the next time
        }
        if (bytes) exactSizes_[item.id] = *bytes;
    }
    std::erase_if(exactSizes_, [&](const auto& entry) { return !held.contains(entry.first); });
    return exactSizes_;
}

}  // namespace velto
