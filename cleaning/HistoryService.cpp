#include "cleaning/HistoryService.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include <nlohmann/json.hpp>

#include "platform/Platform.h"
#include "platform/values/units.h"

namespace velto {
namespace {

constexpr ReadLimit limit = ownFile(1 << 30);  // the history may grow for ever; years of cleanups

}  // namespace

HistoryService::HistoryService(FileManager& files, FileMover& mover, Log& log,
                               const HomeLayout& layout)
    : files_(files),
      mover_(mover),
      log_(log),
      folder_(layout.dataFolder),
      path_(layout.dataFolder + "/history.json") {
    mergeWithFile();
}

HistoryService& HistoryService::shared() {
    Platform& platform = processPlatform();
    // Lives for ever, as the trash does: work may use it while the process ends.
    static auto* const instance = std::make_unique<HistoryService>(*platform.files, *platform.mover,
                                                                   *platform.log, platform.layout)
                                      .release();
    return *instance;
}

void HistoryService::record(const Operation& operation) {
    HistoryEntry entry{.id = operation.id,
                       .ts = operation.ts,
                       .gb = operation.gb,
                       .items = {},
                       .kind = operation.kind};
    for (const TrashItem& item : operation.items) {
        entry.items.push_back({.name = item.name, .gb = item.gb});
    }
    const auto held = lock();
    mergeWithFile();
    entries_.insert(entries_.begin(), std::move(entry));
    save();
}

void HistoryService::noteDeleted(const TrashItem& item) {
    deleted_[item.opID].push_back({.name = item.name, .gb = item.gb});
}

void HistoryService::remove(const std::string& operationID) {
    const auto held = lock();
    mergeWithFile();
    const auto deleted = deleted_.find(operationID);
    const auto entry = std::ranges::find(entries_, operationID, &HistoryEntry::id);
    if (deleted != deleted_.end() && entry != entries_.end()) {
        entry->items = deleted->second;
        entry->gb = 0;
        for (const HistoryItem& item : entry->items)
            entry->gb += item.gb;
        entry->gb = roundedToTenth(entry->gb);
    } else {
        std::erase_if(entries_, [&](const HistoryEntry& one) { return one.id == operationID; });
    }
    save();
}

void HistoryService::clear() {
    if (entries_.empty() && !files_.exists(path_)) return;
    const auto held = lock();
    mergeWithFile();
    if (entries_.empty()) return;
    entries_.clear();
    save();
    log_.line("Velto ▶ historial vaciado");
}

/// Null when the folder does not allow it; then the last writer wins.
std::unique_ptr<FileLock> HistoryService::lock() {
    try {
        files_.createFolders(folder_);
        return mover_.lock(path_ + ".lock", true);
    } catch (const FileError&) {
        return nullptr;
    }
}

/// Nothing when there is no file, or none that can be read or understood.
std::optional<std::vector<HistoryEntry>> HistoryService::read() {
    try {
        version_ = mover_.openVersion(path_, limit);
        if (!version_) return std::nullopt;
        return decodeHistory(version_->read());
    } catch (const FileError&) {
        version_.reset();  // the next change tries again
        return std::nullopt;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

/// Brings together what the file says and what this process has not been able to write into it.
/// Without a sound file the list in memory is all there is.
void HistoryService::mergeWithFile() {
    if (version_ && version_->isCurrent()) return;
    auto written = read();
    if (!written) return;
    const auto idsOf = [](const std::vector<HistoryEntry>& entries) {
        std::unordered_set<std::string> ids;
        for (const HistoryEntry& entry : entries)
            ids.insert(entry.id);
        return ids;
    };
    const auto here = idsOf(entries_);
    const auto there = idsOf(*written);
    std::erase_if(entries_, [&](const HistoryEntry& entry) {
        return there.contains(entry.id) || saved_.contains(entry.id);  // not ours alone
    });
    std::erase_if(*written, [&](const HistoryEntry& entry) {
        return !here.contains(entry.id) && saved_.contains(entry.id);  // removed here
    });
    if (entries_.empty()) {
        entries_ = std::move(*written);
    } else {
        std::ranges::move(*written, std::back_inserter(entries_));
    }
    saved_ = there;
}

void HistoryService::save() {
    std::unordered_set<std::string> ids;
    for (const HistoryEntry& entry : entries_)
        ids.insert(entry.id);
    try {
        files_.createFolders(folder_);
        files_.writeAtomically(path_, encodeHistory(entries_));
        saved_ = std::move(ids);
        version_ = mover_.openVersion(path_, limit);
    } catch (const FileError&) {
        // The list in memory stays in force.
    } catch (const nlohmann::json::exception&) {
        // A text that is not UTF-8 cannot be written as JSON, and no name is one; with a number
        // that is not finite the file would read as damaged.
    }
}

}  // namespace velto
