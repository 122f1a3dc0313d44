#include "analysis/folders/FolderRecorder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace velto {
namespace {

std::uint32_t wholeSeconds(double time) {
    constexpr double most = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::clamp(std::floor(time), 0.0, most));
}

}  // namespace

void WalkedFolders::add(const std::vector<Identity>& folders) {
    const auto sorted = static_cast<std::ptrdiff_t>(folders_.size());
    folders_.insert(folders_.end(), folders.begin(), folders.end());
    std::sort(folders_.begin() + sorted, folders_.end());
    std::inplace_merge(folders_.begin(), folders_.begin() + sorted, folders_.end());
}

bool WalkedFolders::contains(const Identity& folder) const {
    return std::ranges::binary_search(folders_, folder);
}

FolderRecorder::Number FolderRecorder::nextNumber() {
    constexpr Number taken = 64;  // at once, as every recorder takes from the same place
    if (next_ == end_) {
        next_ = recording_.next.fetch_add(taken, std::memory_order_relaxed);
        end_ = next_ + taken;
    }
    return next_++;
}

void FolderRecorder::number(WalkedFolder& folder) { folder.number = nextNumber(); }

void FolderRecorder::leaveOut(const WalkedFolder& folder, FolderState state) {
    add(folder.number, folder.parent()->number, folder.name(), {.state = state});
}

void FolderRecorder::leaveOut(const WalkedFolder& parent, std::string_view name,
                              FolderState state) {
    add(nextNumber(), parent.number, name, {.state = state});
}

void FolderRecorder::leaveOut(const BoundFolder& folder, FolderState state) {
    add(folder.number, folder.parent, folder.name, {.state = state});
}

bool FolderRecorder::begin(const WalkedFolder& folder, const FolderStatus& status) {
    FolderRecording::Root& root = recording_.roots[folder.root()];
    const WalkedFolders::Identity identity{.device = status.device, .inode = status.inode};
    if (folder.parent() == nullptr) {
        root.device = status.device;
        root.mount = status.mount;
    } else if (status.device != root.device) {
        leaveOut(folder, FolderState::otherVolume);
        return false;
    } else if (status.mount != root.mount) {
        bound_.push_back({.path = folder.path(),
                          .name = folder.name(),
                          .number = folder.number,
                          .parent = folder.parent()->number,
                          .mark = folder.mark,
                          .identity = identity});
        return false;
    } else if (recording_.walked != nullptr && recording_.walked->contains(identity)) {
        leaveOut(folder, FolderState::alreadyWalked);
        return false;
    }
    facts_ = {.inode = status.inode, .ownBytes = std::max<std::int64_t>(status.allocatedSize, 0)};
    latest_ = status.modified;
    return true;
}

void FolderRecorder::countLinked(const WalkedFolder& folder, const DirectoryEntry& entry,
                                 std::int64_t bytes, bool isCounted) {
    const std::uint64_t device = recording_.roots[folder.root()].device;
    linked_.push_back(
        {.identity = {.device = device, .inode = entry.inode},
         .bytes = bytes,
         .folder = folder.number,
         .isRegular = entry.kind == EntryKind::regular,
         .isCounted = isCounted,
         .links = static_cast<std::uint16_t>(std::min<std::uint32_t>(entry.links, UINT16_MAX)),
         .name = kept(entry.name)});
}

void FolderRecorder::unopened(const WalkedFolder& folder) {
    facts_.state = FolderState::unreadable;
    record(folder);
}

void FolderRecorder::vanished() {
    facts_ = {};
    latest_ = 0;
}

void FolderRecorder::end(const WalkedFolder& folder, bool isComplete) {
    if (!isComplete) ++facts_.unreadable;
    facts_.isListedWhole = isComplete;
    record(folder);
}

void FolderRecorder::record(const WalkedFolder& folder) {
    facts_.latest = wholeSeconds(std::exchange(latest_, 0));
    const FolderFacts facts = std::exchange(facts_, {});
    if (folder.parent() != nullptr) {
        add(folder.number, folder.parent()->number, folder.name(), facts);
    } else {
        const FolderRecording::Root& root = recording_.roots[folder.root()];
        add(root.number, root.parent, root.name, facts);
    }
}

void FolderRecorder::add(Number number, Number parent, std::string_view name,
                         const FolderFacts& facts) {
    if (count_ % chunkLength == 0) {
        chunks_.push_back(std::make_unique_for_overwrite<FolderTreeBuilder::Entry[]>(chunkLength));
    }
    chunks_.back()[count_ % chunkLength] = {
        .number = number, .parent = parent, .name = kept(name), .facts = facts};
    ++count_;
}

std::string_view FolderRecorder::kept(std::string_view name) {
    // A name has some hundred bytes at most, a root's path some thousand.
    name = name.substr(0, nameChunk);
    if (nameEnd_ + name.size() > nameChunk) {
        names_.push_back(std::make_unique_for_overwrite<char[]>(nameChunk));
        nameEnd_ = 0;
    }
    char* place = names_.back().get() + nameEnd_;
    std::memcpy(place, name.data(), name.size());
    nameEnd_ += name.size();
    return {place, name.size()};
}

void FolderRecorder::moveTo(std::vector<FolderTreeBuilder::Entry>& byNumber) {
    std::size_t index = 0;
    for (auto& chunk : chunks_) {
        const std::size_t end = std::min(count_, index + chunkLength);
        for (std::size_t place = 0; index < end; ++index, ++place)
            byNumber[chunk[place].number] = chunk[place];
        chunk.reset();
    }
    chunks_.clear();
    count_ = 0;
}

}  // namespace velto
