#include "analysis/HomeWalk.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <optional>
#include <utility>

#include "analysis/folders/folder_assembly.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::uint32_t reason(FolderState state) { return static_cast<std::uint32_t>(state); }

/// What a folder is that the layout names; nothing when it is not there.
std::optional<FolderStatus> statusOf(DirectoryReader& reader, const std::string& path) {
    FolderStatus status;
    const auto folder = reader.open(path);
    if (!folder || !reader.status(*folder, {}, status)) return std::nullopt;
    return status;
}

}  // namespace

HomeWalk::HomeWalk(const Question& question)
    : question_(question), classifier_(question.layout, places_) {
    leaveOut();
    findRoots();
    for (std::size_t index = 0; index < question.threads; ++index) {
        workers_.push_back(
            std::make_unique<ScanWorker>(classifier_, question.hasAccess, recording_));
    }
}

/// Everything that the walk keeps out of. The last reason for a path is the one that is told.
void HomeWalk::leaveOut() {
    const HomeLayout& layout = question_.layout;
    if (!question_.hasAccess) {
        for (const NamedLocation& location : layout.protectedLocations)
            places_.leaveOut(location.path, reason(FolderState::withheld));
        for (const std::string& path : layout.guardedPaths)
            places_.leaveOut(path, reason(FolderState::withheld));
    }
    for (const std::string& path : question_.excluded)
        places_.leaveOut(path, reason(FolderState::excluded));
    for (const std::string& path : layout.neverWalked)
        places_.leaveOut(path, reason(FolderState::own));
}

/// The home, and what the walk of it does not reach.
void HomeWalk::findRoots() {
    const HomeLayout& layout = question_.layout;
    const auto home = statusOf(question_.reader, layout.home);
    for (const std::string& path : layout.walkRoots) {
        if (places_.leavesOut(path)) continue;
        const bool isReached = path != layout.home && isAtOrBelow(path, layout.home);
        if (isReached && !(home && isOnAnotherVolume(path, *home))) continue;
        addRoot(path);
    }
    isSimple_ = roots_.size() == 1 && roots_.front().path == layout.home;
    // Should a walk come to a root from above all the same, it is not walked twice.
    for (const WalkRoot& root : roots_) {
        if (root.path != layout.home) places_.leaveOut(root.path, reason(FolderState::otherVolume));
    }
}

bool HomeWalk::isOnAnotherVolume(const std::string& root, const FolderStatus& home) const {
    const auto status = statusOf(question_.reader, root);
    return status && status->device != home.device;
}

void HomeWalk::addRoot(const std::string& path) {
    recording_.roots.push_back({.number = recording_.next++, .name = path});
    roots_.push_back({path, classifier_.markOfRoot(path), question_.layout.home});
}

void HomeWalk::noteFolders(double recent, const EarlierWalk* earlier) {
    earlier_ = earlier;
    noting_.clear();
    for (const auto& worker : workers_)
        noting_.push_back(std::make_unique<NotingVisitor>(*worker, recent, earlier));
}

void HomeWalk::runAgain(const CancellationFlag& cancelled, const TreeWalk::Tick& tick) {
    const KeptWalk& before = earlier_->walk;
    roots_.clear();
    recording_.roots.clear();
    recording_.next = 0;
    for (const std::uint32_t folder : earlier_->readings.folders) {
        const std::string path = before.path(folder);
        recording_.roots.push_back({.number = recording_.next++, .name = path});
        roots_.push_back({path, before.folders[folder].mark, question_.layout.home});
    }
    walk(roots_, cancelled, tick);
    isSimple_ = takeBound().empty();
}

std::optional<AssembledWalk> HomeWalk::noted() const {
    if (noting_.empty() || !isSimple_) return std::nullopt;
    NotedWalk noted{.roots = recording_.roots, .numbers = recording_.next, .earlier = earlier_};
    for (const auto& visitor : noting_)
        noted.visitors.push_back(visitor.get());
    for (const FolderRecorder* recorder : recorders())
        noted.recorders.push_back(recorder);
    return assembleWalk(noted);
}

void HomeWalk::run(const CancellationFlag& cancelled, const TreeWalk::Tick& tick) {
    const TreeWalk::Result result = walk(roots_, cancelled, tick);
    for (std::size_t index = 0; index < roots_.size(); ++index) {
        const int error = result.rootErrors[index];
        if (roots_[index].path == question_.layout.home) homeError_ = error;
        // A library that is missing, or a link, is not an unreadable one.
        if (error != 0 && error != ENOENT && error != ELOOP && error != ENOTDIR) ++unreadableRoots_;
    }
    if (!result.cancelled) walkBound(cancelled, tick);
}

TreeWalk::Result HomeWalk::walk(const std::vector<WalkRoot>& roots,
                                const CancellationFlag& cancelled, const TreeWalk::Tick& tick) {
    std::vector<TreeVisitor*> visitors;
    visitors.reserve(workers_.size());
    for (const auto& visitor : noting_)
        visitors.push_back(visitor.get());
    if (noting_.empty()) {
        for (const auto& worker : workers_)
            visitors.push_back(worker.get());
    }
    const WalkOptions options{.allocatedOfEveryFile = true,
                              .folderStatus = true,
                              .places = &places_,
                              .firstThreads = question_.firstThreads};
    return TreeWalk(question_.reader).run(roots, visitors, options, cancelled, tick);
}

/// What is known under another name by now is not walked again. The others are, one after another
/// in the order of their paths, so that which of two is walked does not depend on the threads.
void HomeWalk::walkBound(const CancellationFlag& cancelled, const TreeWalk::Tick& tick) {
    auto bound = takeBound();
    if (bound.empty()) return;
    isSimple_ = false;
    WalkedFolders walked = walkedFolders(recorders(), recording_.roots, recording_.next);
    for (; !bound.empty(); bound = takeBound()) {
        for (const BoundFolder& folder : bound) {
            if (cancelled.isCancelled()) return;
            walkBound(folder, walked, cancelled, tick);
        }
    }
}

void HomeWalk::walkBound(const BoundFolder& folder, WalkedFolders& walked,
                         const CancellationFlag& cancelled, const TreeWalk::Tick& tick) {
    if (walked.contains(folder.identity)) {
        workers_.front()->folders().leaveOut(folder, FolderState::alreadyWalked);
        return;
    }
    std::vector<FolderRecording::Root> roots{
        {.number = folder.number, .parent = folder.parent, .name = folder.name}};
    std::swap(recording_.roots, roots);
    std::vector<std::size_t> counts;
    for (const FolderRecorder* recorder : recorders())
        counts.push_back(recorder->count());
    recording_.walked = &walked;
    const TreeWalk::Result result =
        walk({{folder.path, folder.mark, question_.layout.home}}, cancelled, tick);
    recording_.walked = nullptr;
    std::swap(recording_.roots, roots);
    addWalked(walked, recorders(), counts, folder.identity.device);
    if (result.rootErrors.front() == 0) return;
    workers_.front()->folders().leaveOut(folder, FolderState::unreadable);
    ++unreadableRoots_;
}

std::vector<BoundFolder> HomeWalk::takeBound() {
    std::vector<BoundFolder> all;
    for (const auto& worker : workers_)
        std::ranges::move(worker->folders().takeBound(), std::back_inserter(all));
    std::ranges::sort(all, {}, &BoundFolder::path);
    return all;
}

std::vector<FolderRecorder*> HomeWalk::recorders() const {
    std::vector<FolderRecorder*> recorders;
    recorders.reserve(workers_.size());
    for (const auto& worker : workers_)
        recorders.push_back(&worker->folders());
    return recorders;
}

HomeWalk::Folders HomeWalk::takeFolders() {
    AssembledFolders assembled = assembleFolders(recorders(), recording_.next);
    return {.tree = std::make_shared<const FolderTree>(std::move(assembled.tree)),
            .hiddenBytes = assembled.hiddenBytes};
}

HomeWalk::Folders HomeWalk::takeFolders(const AssembledWalk& assembled) {
    AssembledFolders folders = foldersOf(assembled, recorders());
    return {.tree = std::make_shared<const FolderTree>(std::move(folders.tree)),
            .hiddenBytes = folders.hiddenBytes};
}

}  // namespace velto
