#include "cleaning/names_in_trash.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "platform/values/scratch_name.h"
#include "platform/values/text.h"

namespace velto {
namespace {

// Bytes; what most volumes take, and those that encrypt names.
constexpr std::array<std::size_t, 2> usualLimits{255, 143};

/// Where `name` can be cut so that at most `length` bytes are left and no character is split. Bytes
/// that are no text may be cut anywhere.
std::size_t cutBefore(std::string_view name, std::size_t length) {
    constexpr std::size_t longestCharacter = 4;
    for (std::size_t back = 1; back < longestCharacter && back <= length; ++back) {
        const std::size_t start = length - back;
        for (std::size_t size = back + 1; size <= longestCharacter; ++size) {
            if (start + size > name.size()) break;
            const bool isOne =
                isValidUtf8(name.substr(start, size)) && !isValidUtf8(name.substr(start, back));
            if (isOne) return start;
        }
    }
    return length;
}

std::string shortened(std::string_view name, std::size_t longest) {
    const bool isLong = name.size() > longest;
    return std::string(name.substr(0, isLong ? cutBefore(name, longest) : name.size()));
}

std::string wholeName(const TrashItem& item) { return item.id + "-" + item.name; }

}  // namespace

bool isSound(const TrashItem& item) {
    return isComponent(item.opID) && isComponent(wholeName(item));
}

std::string storedName(FileMover& mover, const FolderHandle& operation, const TrashItem& item) {
    const std::string whole = wholeName(item);
    if (whole.size() <= usualLimits.back()) return whole;  // most names: the volume is not asked
    const std::size_t longest = std::min(mover.longestName(operation), usualLimits.front());
    const std::string own = shortened(whole, longest);
    for (const std::size_t limit : usualLimits) {
        // The trash may have come here from a volume with a lower limit.
        const std::string other = shortened(whole, limit);
        if (other.size() >= own.size() || mover.attributes(operation, own)) continue;
        if (mover.attributes(operation, other)) return other;
    }
    return own;
}

std::string scratchNameOf(const TrashItem& item) {
    std::string name = scratchName(item.id);
    if (!isScratchName(name)) throw FileError("move in steps", item.id, EINVAL);
    return name;
}

std::string backScratchOf(const TrashItem& item) { return scratchNameOf(item) + "-back"; }

std::string begunNameOf(const TrashItem& item) { return scratchNameOf(item) + "-deleting"; }

}  // namespace velto
