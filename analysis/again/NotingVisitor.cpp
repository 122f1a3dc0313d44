#include "analysis/again/NotingVisitor.h"

namespace velto {

bool NotingVisitor::begin(const WalkedFolder& folder, const FolderStatus& status) {
    if (earlier_ != nullptr) {
        if (folder.parent() == nullptr) {
            // Another folder by now: whoever finds it from above walks it.
            const std::uint32_t known = earlier_->readings.folders[folder.root()];
            if (earlier_->walk.folders[known].facts.inode != status.inode) return false;
        } else if (stays(folder, status)) {
            return false;
        }
    }
    return worker_.begin(folder, status);
}

/// Its contents, and those of all folders below, are what they were, or are read by themselves.
bool NotingVisitor::stays(const WalkedFolder& folder, const FolderStatus& status) {
    if (folder.parent()->parent() != nullptr) return false;  // below one that is new
    const std::uint32_t above = earlier_->readings.folders[folder.root()];
    const std::uint32_t known = earlier_->walk.child(above, folder.name());
    if (known == KeptFolder::none || !earlier_->readings.canStay[known]) return false;
    const KeptFolder& kept = earlier_->walk.folders[known];
    if (kept.facts.inode != status.inode || status.inode == 0 || kept.mark != folder.mark ||
        kept.isHidden != folder.isHidden || !worker_.isOfTheSameMount(folder, status)) {
        return false;
    }
    stayed_.push_back({folder.parent()->number, known});
    return true;
}

void NotingVisitor::unopened(const WalkedFolder& folder) {
    worker_.unopened(folder);
    note(folder);
}

void NotingVisitor::end(const WalkedFolder& folder, bool isComplete) {
    worker_.end(folder, isComplete);
    note(folder);
}

/// Between two turns nothing is counted, so that what has come since the last one is this folder's.
void NotingVisitor::note(const WalkedFolder& folder) {
    const ScanWorker::Tally now = worker_.tally();
    const FolderFacts& facts = worker_.lastFacts();
    Note& note = notes_.emplace_back(Note{.number = folder.number});
    KeptFolder& kept = note.folder;
    kept.facts = facts;
    kept.mark = folder.mark;
    kept.isHidden = folder.isHidden;
    if (earlier_ != nullptr && folder.parent() == nullptr) {
        const std::uint32_t known = earlier_->readings.folders[folder.root()];
        kept.isHidden = earlier_->walk.folders[known].isHidden;
    }
    kept.hiddenBytes = now.hiddenBytes - before_.hiddenBytes;
    kept.unreadable = now.unreadable - before_.unreadable;
    kept.firstCandidate = static_cast<std::uint32_t>(before_.candidates);
    kept.candidates = static_cast<std::uint32_t>(now.candidates - before_.candidates);
    kept.firstCount = static_cast<std::uint32_t>(counts_.size());
    for (std::size_t index = 0; index < categoryCount; ++index) {
        const std::int64_t files = now.categoryFiles[index] - before_.categoryFiles[index];
        if (files == 0) continue;
        counts_.push_back({.category = static_cast<Category>(index),
                           .bytes = now.categoryBytes[index] - before_.categoryBytes[index],
                           .files = files});
    }
    kept.counts = static_cast<std::uint32_t>(counts_.size()) - kept.firstCount;
    // When a large file was read is shown, and changes untold; a file of several names may change
    // by another one; and what could not be read may be readable.
    kept.isReadAgain = now.bigFiles != before_.bigFiles || now.linked != before_.linked ||
                       facts.state == FolderState::unreadable || facts.unreadable > 0 ||
                       !facts.isListedWhole || facts.latest >= recent_ || kept.unreadable > 0;
    before_ = now;
}

}  // namespace velto
