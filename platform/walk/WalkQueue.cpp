#include "platform/walk/WalkQueue.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace velto {

void WalkQueue::addRoots(std::vector<FolderReference> roots) {
    const std::lock_guard guard(lock_);
    waiting_ += roots.size();
    std::move(roots.rbegin(), roots.rend(), std::back_inserter(roots_));
}

void WalkQueue::allow(std::size_t workers) {
    const std::lock_guard guard(lock_);
    allowed_ = workers;
    resumed_.notify_all();
}

void WalkQueue::join(Seat& seat) {
    const std::lock_guard guard(lock_);
    seats_.push_back(&seat);
    ++taking_;
}

/// Under the lock: waits while too many take part.
void WalkQueue::pause(std::unique_lock<std::mutex>& guard) {
    while (taking_ > allowed_ && !isOver()) {
        --taking_;
        // What this worker would have taken is another one's now.
        if (waiting_ > 0) changed_.notify_one();
        resumed_.wait(guard, [this] { return isOver() || taking_ < allowed_; });
        ++taking_;
    }
}

bool WalkQueue::next(Seat& seat, Item& item, Listed& listed) {
    // Closing a folder is a system call and letting go of one may free many: not under the lock.
    FolderReference done = std::exchange(item, Item()).folder;
    const bool wasBusy = static_cast<bool>(done);
    Handles closing;
    if (listed.children.empty()) {
        listed.handle = nullptr;
        done = FolderReference();
    }
    std::unique_lock guard(lock_);
    if (done) add(seat, *done, listed, closing);
    if (wasBusy) --busy_;
    if (isOver()) {
        changed_.notify_all();
        resumed_.notify_all();
    }
    pause(guard);
    ++idle_;
    changed_.wait(guard, [this] { return isOver() || waiting_ > 0; });
    --idle_;
    if (stopped_ || waiting_ == 0) return false;

    ++busy_;
    item.folder = take(seat);
    if (item.folder->parent_) item.parent = takeHandle(*item.folder->parent_);
    return true;
}

/// Under the lock, when there is one.
FolderReference WalkQueue::take(Seat& seat) {
    if (seat.waiting_.empty() && roots_.empty()) takeHalf(seat);
    std::vector<FolderReference>& from = seat.waiting_.empty() ? roots_ : seat.waiting_;
    FolderReference folder = std::move(from.back());
    from.pop_back();
    --waiting_;
    return folder;
}

/// Under the lock: from the worker that has the most, those found first, which lie highest and hold
/// the most.
void WalkQueue::takeHalf(Seat& seat) {
    std::vector<FolderReference>& most =
        (*std::ranges::max_element(seats_, {}, [](const Seat* one) {
            return one->waiting_.size();
        }))->waiting_;
    const auto half = most.begin() + static_cast<std::ptrdiff_t>((most.size() + 1) / 2);
    std::move(most.begin(), half, std::back_inserter(seat.waiting_));
    most.erase(most.begin(), half);
}

/// Under the lock: the handle through which one of the waiting children is opened. The last one
/// takes it along, except a root's, from which everything below can be opened anew.
std::shared_ptr<OpenFolder> WalkQueue::takeHandle(WalkedFolder& parent) {
    const bool isLast = --parent.waitingChildren_ == 0;
    if (!isLast || !parent.handle_ || !parent.parent_) return parent.handle_;
    open_.erase(parent.kept_);
    return std::exchange(parent.handle_, nullptr);
}

/// Under the lock. The caller takes one of them itself.
void WalkQueue::add(Seat& seat, WalkedFolder& folder, Listed& listed, Handles& closing) {
    folder.waitingChildren_ = listed.children.size();
    waiting_ += listed.children.size();
    std::ranges::move(listed.children, std::back_inserter(seat.waiting_));
    keep(folder, std::exchange(listed.handle, nullptr), closing);
    const std::size_t wanted = std::min(idle_, listed.children.size() - 1);
    for (std::size_t woken = 0; woken < wanted; ++woken)
        changed_.notify_one();
    listed.children.clear();
}

void WalkQueue::stop() {
    const std::lock_guard guard(lock_);
    stopped_ = true;
    changed_.notify_all();
    resumed_.notify_all();
}

WalkQueue::OpenAncestor WalkQueue::openAncestor(const WalkedFolder& folder) {
    const std::lock_guard guard(lock_);
    OpenAncestor found;
    WalkedFolder* above = folder.parent_ ? &*folder.parent_ : nullptr;
    while (above != nullptr && !above->handle_) {
        found.closed.push_back(above);
        above = above->parent_ ? &*above->parent_ : nullptr;
    }
    if (above != nullptr) found.handle = above->handle_;
    return found;
}

void WalkQueue::keepOpen(WalkedFolder& folder, const std::shared_ptr<OpenFolder>& handle) {
    Handles closing;
    const std::lock_guard guard(lock_);
    if (folder.waitingChildren_ == 0 || folder.handle_) return;
    keep(folder, handle, closing);
}

/// Under the lock. What has to be closed goes to `closing`, which the caller destroys later.
void WalkQueue::keep(WalkedFolder& folder, std::shared_ptr<OpenFolder> handle, Handles& closing) {
    folder.handle_ = std::move(handle);
    if (!folder.parent_) return;
    folder.kept_ = open_.insert(open_.end(), &folder);
    while (open_.size() > maxOpenFolders_) {
        closing.push_back(std::move(open_.front()->handle_));
        open_.front()->handle_ = nullptr;
        open_.pop_front();
    }
}

}  // namespace velto
