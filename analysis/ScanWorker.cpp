#include "analysis/ScanWorker.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "analysis/relative_time.h"
#include "cleaning/DupFinder.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::int64_t smallestBigFile = 300'000'000;  // 0.3 GB

constexpr std::array<std::string_view, 3> mediaLibraryExtensions{"photoslibrary", "musiclibrary",
                                                                 "tvlibrary"};

/// Libraries of the system's media applications, whole folders under one extension.
bool isMediaLibrary(std::string_view name) {
    // Every one ends in a "y" in either case; that spares nearly all names the rest.
    if (name.empty() || (name.back() | 0x20) != 'y') return false;
    const std::string extension = lowerCaseExtension(name);
    return std::ranges::find(mediaLibraryExtensions, extension) != mediaLibraryExtensions.end();
}

double lastUse(const DirectoryEntry& entry) {
    if (entry.accessed != 0) return entry.accessed;
    return entry.modified != 0 ? entry.modified : distantPast;
}

/// A counter with one writer needs no locked instruction.
void increase(std::atomic<std::int64_t>& counter, std::int64_t amount) {
    counter.store(counter.load(std::memory_order_relaxed) + amount, std::memory_order_relaxed);
}

template <typename Element>
void moveTo(std::vector<Element>& target, std::vector<Element>& source) {
    std::ranges::move(source, std::back_inserter(target));
    source.clear();
}

}  // namespace

bool ScanWorker::enter(WalkedFolder& folder) {
    if (folder.parent() == nullptr) return true;
    if (!entersMediaLibraries_ && isMediaLibrary(folder.name())) return false;
    classifier_.note(folder);
    return true;
}

void ScanWorker::file(const WalkedFolder& folder, const DirectoryEntry& entry, const Place* place) {
    if (!entersMediaLibraries_ && isMediaLibrary(entry.name)) return;
    const std::int64_t size = entry.allocatedSize >= 0 ? entry.allocatedSize : entry.logicalSize;
    if (size < 1) return;

    increase(files_, 1);
    increase(bytes_, size);
    const Category category = classifier_.categoryOf(folder, entry.name, place);
    categoryBytes_[static_cast<std::size_t>(category)] += size;
    ++categoryFiles_[static_cast<std::size_t>(category)];
    if (size >= DupFinder::smallestSize) {
        duplicateCandidates_.push_back({folder.pathOf(entry.name), size});
    }
    if (size >= smallestBigFile) {
        bigFiles_.push_back({folder.pathOf(entry.name), size, lastUse(entry), category});
    }
}

void ScanWorker::handOver(WalkTotals& totals, std::vector<BigFileFound>& bigFiles) {
    totals.filesScanned += files();
    totals.bytesScanned += bytes();
    for (std::size_t index = 0; index < categoryCount; ++index) {
        if (categoryFiles_[index] == 0) continue;  // a category of no file has no key
        const std::string id(categoryTable[index].id);
        totals.catBytes[id] += categoryBytes_[index];
        totals.catFiles[id] += categoryFiles_[index];
    }
    moveTo(totals.fileList, duplicateCandidates_);
    moveTo(bigFiles, bigFiles_);
}

}  // namespace velto
