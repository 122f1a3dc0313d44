#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "analysis/Classifier.h"
#include "analysis/ScanWorker.h"
#include "analysis/again/NotingVisitor.h"
#include "analysis/again/walk_assembly.h"
#include "analysis/folders/FolderRecorder.h"
#include "platform/CancellationFlag.h"
#include "platform/HomeLayout.h"
#include "platform/values/PlaceTable.h"
#include "platform/walk/TreeWalk.h"

namespace velto {

/// One walk of the home: what it enters, and what it leaves out and why. It stays on the home's
/// volume, but for the roots that the layout names on others; folders that are bound to a second
/// place on it are walked once.
class HomeWalk {
public:
    struct Question {
        DirectoryReader& reader;
        const HomeLayout& layout;
        const std::vector<std::string>& excluded;
        bool hasAccess = false;
        std::size_t threads = 1;       // at most
        std::size_t firstThreads = 0;  // see WalkOptions
    };

    explicit HomeWalk(const Question& question);

    /// From now on it is noted, folder by folder, what the walk makes of each; see NotingVisitor.
    /// `earlier` outlives the walk.
    void noteFolders(double recent, const EarlierWalk* earlier = nullptr);

    /// True as long as all lies on one volume and is reached from the home, bound to no second
    /// place: what is more than that is not noted.
    bool isSimple() const { return isSimple_; }

    /// Reads what an earlier walk has to have read again, in place of `run`. Assemble what is
    /// noted to see whether it adds up.
    void runAgain(const CancellationFlag& cancelled, const TreeWalk::Tick& tick);

    /// What was noted, before the workers hand over what they have; nothing when it does not add
    /// up to a walk.
    std::optional<AssembledWalk> noted() const;

    /// Returns when all has been walked, or the flag was set.
    void run(const CancellationFlag& cancelled, const TreeWalk::Tick& tick);

    const std::vector<std::unique_ptr<ScanWorker>>& workers() const { return workers_; }

    /// After the walk. The errno with which the home could not be opened, 0 when it could.
    int homeError() const { return homeError_; }
    /// Roots besides the home that are there and could not be opened.
    std::int64_t unreadableRoots() const { return unreadableRoots_; }

    /// What the workers have recorded; once.
    struct Folders {
        std::shared_ptr<const FolderTree> tree;
        std::int64_t hiddenBytes = 0;
    };
    Folders takeFolders();
    /// The same of a walk that went by an earlier one.
    Folders takeFolders(const AssembledWalk& assembled);

private:
    void leaveOut();
    void findRoots();
    bool isOnAnotherVolume(const std::string& root, const FolderStatus& home) const;
    void addRoot(const std::string& path);
    TreeWalk::Result walk(const std::vector<WalkRoot>& roots, const CancellationFlag& cancelled,
                          const TreeWalk::Tick& tick);
    void walkBound(const CancellationFlag& cancelled, const TreeWalk::Tick& tick);
    void walkBound(const BoundFolder& folder, WalkedFolders& walked,
                   const CancellationFlag& cancelled, const TreeWalk::Tick& tick);
    std::vector<BoundFolder> takeBound();
    std::vector<FolderRecorder*> recorders() const;

    Question question_;
    PlaceTable places_;
    Classifier classifier_;
    FolderRecording recording_;
    std::vector<WalkRoot> roots_;
    std::vector<std::unique_ptr<ScanWorker>> workers_;
    std::vector<std::unique_ptr<NotingVisitor>> noting_;  // one for each worker, or none
    const EarlierWalk* earlier_ = nullptr;
    bool isSimple_ = true;
    int homeError_ = 0;
    std::int64_t unreadableRoots_ = 0;
};

}  // namespace velto
