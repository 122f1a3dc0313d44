#pragma once

#include <condition_variable>
#include <limits>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/DirectoryReader.h"
#include "platform/walk/WalkedFolder.h"

namespace velto {

/// The folders that a walk has found and not yet read. A worker comes first to what it has found
/// itself, last found first: that keeps few folders open and few names in memory, and two workers
/// out of each other's way. Shared by the workers; every function is safe from each of them.
///
/// A folder stays open while folders found in it wait, so that each is opened by one name. No more
/// than a bound of folders stay open this way: beyond it the ones kept longest, which lie highest
/// and are needed last, are closed, and whoever needs one opens it anew from above. A root stays
/// open as long as anything below it is being walked.
class WalkQueue {
public:
    /// A folder to read and its parent's handle; null for a root and for a parent that is closed.
    struct Item {
        FolderReference folder;
        std::shared_ptr<OpenFolder> parent;
    };

    explicit WalkQueue(std::size_t maxOpenFolders) : maxOpenFolders_(maxOpenFolders) {}

    /// Before the workers start. Roots are handed out in the order of the calls.
    void addRoots(std::vector<FolderReference> roots);

    /// How many workers may read at once; the others pause where they ask for the next folder.
    void allow(std::size_t workers);

    /// A worker's place, which lives at least as long as the worker takes part.
    class Seat {
        friend class WalkQueue;
        std::vector<FolderReference> waiting_;  // found by this worker; guarded by the queue's lock
    };

    /// A worker takes part from now on.
    void join(Seat& seat);

    /// The folders found in one, and that one's handle, null when it was not opened.
    struct Listed {
        std::shared_ptr<OpenFolder> handle;
        std::vector<FolderReference> children;
    };

    /// The next folder, in place of the one that `item` holds, which has been read: what was found
    /// in it is added, and `listed` emptied. A worker that has none left takes a root, and then
    /// half of what another has. Waits while other workers may still find some. False at the end of
    /// the walk and after `stop`.
    bool next(Seat& seat, Item& item, Listed& listed);

    /// Lets all workers end.
    void stop();

    /// The handle of the nearest open folder above `folder` (its root at the farthest) and the
    /// closed folders between the two, deepest first.
    struct OpenAncestor {
        std::shared_ptr<OpenFolder> handle;
        std::vector<WalkedFolder*> closed;
    };
    OpenAncestor openAncestor(const WalkedFolder& folder);

    /// Keeps a folder open that was opened anew, when others still wait below it.
    void keepOpen(WalkedFolder& folder, const std::shared_ptr<OpenFolder>& handle);

private:
    using Handles = std::vector<std::shared_ptr<OpenFolder>>;

    bool isOver() const { return stopped_ || (waiting_ == 0 && busy_ == 0); }
    void add(Seat& seat, WalkedFolder& folder, Listed& listed, Handles& closing);
    FolderReference take(Seat& seat);
    void takeHalf(Seat& seat);
    void pause(std::unique_lock<std::mutex>& guard);

    std::shared_ptr<OpenFolder> takeHandle(WalkedFolder& parent);
    void keep(WalkedFolder& folder, std::shared_ptr<OpenFolder> handle, Handles& closing);

    const std::size_t maxOpenFolders_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::condition_variable resumed_;
    std::vector<FolderReference> roots_;  // that nobody has taken, the first one last
    std::vector<Seat*> seats_;
    std::size_t waiting_ = 0;        // roots, and folders at all seats
    std::list<WalkedFolder*> open_;  // kept longest first; roots do not count
    std::size_t busy_ = 0;           // workers that may still add folders
    std::size_t idle_ = 0;           // workers that wait for one
    std::size_t taking_ = 0;         // workers that take part and do not pause
    std::size_t allowed_ = std::numeric_limits<std::size_t>::max();  // of these
    bool stopped_ = false;
};

}  // namespace velto
