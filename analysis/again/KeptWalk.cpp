#include "analysis/again/KeptWalk.h"

#include <algorithm>
#include <array>

namespace velto {

std::string KeptWalk::path(std::uint32_t folder) const {
    std::vector<std::string_view> way;
    for (; folder != KeptFolder::none; folder = folders[folder].parent)
        way.push_back(folders[folder].name);
    std::string path(way.back());
    for (auto next = way.rbegin() + 1; next != way.rend(); ++next) {
        if (!path.ends_with('/')) path += '/';
        path += *next;
    }
    return path;
}

std::uint32_t KeptWalk::child(std::uint32_t folder, std::string_view name) const {
    const auto first = folders.begin() + folders[folder].firstChild;
    const auto last = first + folders[folder].children;
    const auto found = std::lower_bound(
        first, last, name,
        [](const KeptFolder& one, std::string_view wanted) { return one.name < wanted; });
    if (found == last || found->name != name) return KeptFolder::none;
    return static_cast<std::uint32_t>(found - folders.begin());
}

void KeptWalk::addTo(WalkTotals& totals) const {
    std::array<KeptCount, categoryCount> sums{};
    for (const KeptCount& count : counts) {
        KeptCount& sum = sums[static_cast<std::size_t>(count.category)];
        sum.bytes += count.bytes;
        sum.files += count.files;
    }
    for (std::size_t index = 0; index < categoryCount; ++index) {
        if (sums[index].files == 0) continue;  // a category of no file has no key
        const std::string id(categoryTable[index].id);
        totals.filesScanned += sums[index].files;
        totals.bytesScanned += sums[index].bytes;
        totals.catBytes[id] += sums[index].bytes;
        totals.catFiles[id] += sums[index].files;
    }
    totals.fileList.reserve(totals.fileList.size() + candidates.size());
    for (std::uint32_t index = 0; index < folders.size(); ++index) {
        const KeptFolder& folder = folders[index];
        if (folder.candidates == 0) continue;
        std::string above = path(index);
        if (!above.ends_with('/')) above += '/';
        for (std::uint32_t place = 0; place < folder.candidates; ++place) {
            const KeptCandidate& file = candidates[folder.firstCandidate + place];
            totals.fileList.push_back({above + std::string(file.name), file.bytes, file.length});
        }
    }
}

std::int64_t KeptWalk::unreadable() const {
    std::int64_t sum = 0;
    for (const KeptFolder& folder : folders)
        sum += folder.unreadable;
    return sum;
}

}  // namespace velto
