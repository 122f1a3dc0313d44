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
static_assert(smallestBigFile >= DupFinder::smallestSize);

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
    if (folder.parent() == nullptr) {
        folder.number = recording_.roots[folder.root()].number;
        return true;
    }
    folders_.number(folder);
    if (!entersMediaLibraries_ && isMediaLibrary(folder.name())) {
        folders_.leaveOut(folder, FolderState::withheld);
        return false;
    }
    classifier_.note(folder);
    return true;
}

bool ScanWorker::begin(const WalkedFolder& folder, const FolderStatus& status) {
    return folders_.begin(folder, status);
}

void ScanWorker::unopened(const WalkedFolder& folder) {
    if (classifier_.counts(folder)) ++unreadable_;
    folders_.unopened(folder);
}

void ScanWorker::vanished(const WalkedFolder&) { folders_.vanished(); }

void ScanWorker::end(const WalkedFolder& folder, bool isComplete) {
    if (!isComplete && classifier_.counts(folder)) ++unreadable_;
    folders_.end(folder, isComplete);
}

void ScanWorker::unreadable(const WalkedFolder& folder, const DirectoryEntry& entry) {
    if (classifier_.counts(folder, entry)) ++unreadable_;
    folders_.unreadable();
}

void ScanWorker::leftOut(const WalkedFolder& folder, const DirectoryEntry& entry,
                         const Place& place) {
    if (entry.kind != EntryKind::folder) return;
    folders_.leaveOut(folder, entry.name, static_cast<FolderState>(place.reason));
}

void ScanWorker::other(const WalkedFolder& folder, const DirectoryEntry& entry) {
    if (entry.kind != EntryKind::folder) folders_.other(folder, entry);
}

void ScanWorker::file(const WalkedFolder& folder, const DirectoryEntry& entry, const Place* place) {
    const bool isCounted =
        (entersMediaLibraries_ || !isMediaLibrary(entry.name)) && classifier_.counts(folder, entry);
    folders_.file(folder, entry, isCounted);
    if (!isCounted) return;
    const std::int64_t size = entry.allocatedSize >= 0 ? entry.allocatedSize : entry.logicalSize;
    if (size < 1) return;

    increase(files_, 1);
    increase(bytes_, size);
    const Category category = classifier_.categoryOf(folder, entry.name, place);
    categoryBytes_[static_cast<std::size_t>(category)] += size;
    ++categoryFiles_[static_cast<std::size_t>(category)];
    if (size >= DupFinder::smallestSize) list(folder, entry, size, category);
}

/// A file that is worth its path.
void ScanWorker::list(const WalkedFolder& folder, const DirectoryEntry& entry, std::int64_t size,
                      Category category) {
    const std::string path = folder.pathOf(entry.name);
    duplicateCandidates_.push_back({path, size, entry.logicalSize});
    if (size >= smallestBigFile) bigFiles_.push_back({path, size, lastUse(entry), category});
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
    takeBigFiles(bigFiles);
}

void ScanWorker::takeBigFiles(std::vector<BigFileFound>& bigFiles) { moveTo(bigFiles, bigFiles_); }

ScanWorker::Tally ScanWorker::tally() const {
    return {.categoryBytes = categoryBytes_,
            .categoryFiles = categoryFiles_,
            .hiddenBytes = folders_.hiddenBytes(),
            .unreadable = unreadable_,
            .candidates = duplicateCandidates_.size(),
            .bigFiles = bigFiles_.size(),
            .linked = folders_.linked().size()};
}

}  // namespace velto
