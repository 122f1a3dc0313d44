#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "platform/CancellationFlag.h"
#include "platform/DirectoryReader.h"
#include "platform/processor_use.h"
#include "platform/values/PlaceTable.h"
#include "platform/walk/WalkedFolder.h"

namespace velto {

/// What one worker of a walk does with what it meets. Each worker has a visitor of its own, so a
/// visitor shares nothing with another and needs no lock. What it throws ends the walk and reaches
/// the caller.
class TreeVisitor {
public:
    virtual ~TreeVisitor() = default;

    /// A folder was found (a root too). False leaves it out with everything below. `folder.mark`
    /// is the mark of the folder above and may be changed here, only here.
    virtual bool enter(WalkedFolder& folder) {
        static_cast<void>(folder);
        return true;
    }

    /// A regular file was found. `place` is the file's own in the walk's table, nearly always null.
    virtual void file(const WalkedFolder& folder, const DirectoryEntry& entry,
                      const Place* place) = 0;

    /// Anything else was found: a folder (before `enter` is asked), a link, a special file.
    virtual void other(const WalkedFolder& folder, const DirectoryEntry& entry) {
        static_cast<void>(folder);
        static_cast<void>(entry);
    }

    /// An entry was found that could not be read.
    virtual void unreadable(const WalkedFolder& folder, const DirectoryEntry& entry) {
        static_cast<void>(folder);
        static_cast<void>(entry);
    }

    /// An entry was found that the walk's table leaves out.
    virtual void leftOut(const WalkedFolder& folder, const DirectoryEntry& entry,
                         const Place& place) {
        static_cast<void>(folder);
        static_cast<void>(entry);
        static_cast<void>(place);
    }

    // What follows concerns a folder's turn. A worker ends it before it begins the next one.

    /// The turn of a folder that was entered begins: it has not been opened yet (a root has). Only
    /// when the options ask for the status. False leaves it out with everything below, and ends its
    /// turn.
    virtual bool begin(const WalkedFolder& folder, const FolderStatus& status) {
        static_cast<void>(folder);
        static_cast<void>(status);
        return true;
    }

    /// The folder could not be opened: its turn ends. Not called for roots.
    virtual void unopened(const WalkedFolder& folder) { static_cast<void>(folder); }

    /// The folder was removed between its listing and its turn, which ends. Not called for roots.
    virtual void vanished(const WalkedFolder& folder) { static_cast<void>(folder); }

    /// All that could be listed of the folder has been met: its turn ends. `isComplete` is false
    /// when the listing broke off. Not called once the walk is cancelled.
    virtual void end(const WalkedFolder& folder, bool isComplete) {
        static_cast<void>(folder);
        static_cast<void>(isComplete);
    }
};

struct WalkRoot {
    std::string path;        // absolute
    std::uint32_t mark = 0;  // what the visitor's `enter` finds as the mark
    /// `path` or a folder above it: links on the way to it are followed, links after it refused.
    /// Empty: the whole path may lead through links.
    std::string resolved;
};

struct WalkOptions {
    bool skipHidden = false;             // names that begin with a full stop, flagged entries
    bool sizeEveryEntry = false;         // logical sizes of folders, links and special files too
    bool allocatedOfEveryFile = false;   // what links and special files take up on disk too
    bool folderStatus = false;           // what each folder is; one call more for each
    const PlaceTable* places = nullptr;  // outlives the walk
    /// Folders kept open for the folders that wait in them; besides these, each worker and each
    /// root begun hold at most two.
    std::size_t maxOpenFolders = 96;
    /// So many threads begin, as many as the walk may keep processors busy; the others join while
    /// it mostly waits for the disk, and pause when it no longer does. 0: all from the beginning.
    std::size_t firstThreads = 0;
    /// What the process has used of processors so far; empty: as the system counts it.
    std::function<ProcessorUse()> processorUse;
};

/// The program's one way through folder trees: several threads over a DirectoryReader, depth first,
/// never through a link. Stateless.
class TreeWalk {
public:
    struct Result {
        std::int64_t unreadable = 0;  // entries and folders that could not be read; not the roots
        std::vector<int> rootErrors;  // per root: 0, or the errno that kept it from being opened
        bool cancelled = false;       // the flag was set: the walk may be incomplete
    };
    /// Called on the calling thread every now and then (some 20 times a second) during the walk.
    using Tick = std::function<void()>;

    /// The reader outlives the walk.
    explicit TreeWalk(DirectoryReader& reader) : reader_(reader) {}

    /// Walks the roots with one thread per visitor at most and returns when all have ended;
    /// rethrows what a visitor, the reader or `tick` threw. The flag is tested once per entry. A
    /// root that the table leaves out is walked all the same: the caller named it.
    Result run(const std::vector<WalkRoot>& roots, std::span<TreeVisitor* const> visitors,
               const WalkOptions& options = {}, const CancellationFlag& cancelled = {},
               const Tick& tick = {}) const;

private:
    DirectoryReader& reader_;
};

}  // namespace velto
