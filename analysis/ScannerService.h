#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "analysis/AnalysisOutput.h"
#include "analysis/HomeWalk.h"
#include "analysis/WalkTotals.h"
#include "analysis/again/WalkKeeper.h"
#include "analysis/folders/FolderTree.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"

namespace velto {

/// Thrown by a walk whose flag was set.
class CancellationError : public std::exception {
public:
    const char* what() const noexcept override { return "cancelled"; }
};

class PermissionService;

/// Walks the home folder and adds up what fills it. One walk at a time per instance. The service's
/// own fields are the raw totals of the last walk, partial after a cancelled one.
class ScannerService : public WalkTotals {
public:
    /// Files counted so far and gigabytes counted so far; called on the thread that called `scan`,
    /// at most once every 0.2 seconds.
    using Progress = std::function<void(std::int64_t files, double gb)>;

    /// The files of equal size looked into so far and the gigabytes read of them: once when their
    /// comparison begins, then at most every 0.2 seconds, from one thread at a time of several.
    using Comparing = std::function<void(std::int64_t files, double gb)>;

    /// The platform and the service outlive the scanner. `threads` 0: one per processor, and some
    /// more while the walk waits for the disk.
    ScannerService(Platform& platform, const PermissionService& permissions,
                   std::size_t threads = 0);

    /// Walks, finds duplicates and builds the output. `excluded` are the paths that the user keeps
    /// out. Blocks; not on the main thread. Throws CancellationError. A home that cannot be read is
    /// fatal.
    AnalysisOutput scan(const std::vector<std::string>& excluded, const CancellationFlag& cancelled,
                        const Progress& progress, const Comparing& comparing = {});

    /// Every folder of the last walk with what it holds, null before one and after a cancelled one.
    std::shared_ptr<const FolderTree> folders() const { return folders_; }

    /// Bytes of files that the tree holds and no category does: what is hidden.
    std::int64_t hiddenBytes() const { return hiddenBytes_; }

    /// What the next walk may go by, to be saved with WalkKeeper once the analysis is; null where
    /// it could not be used.
    std::shared_ptr<const std::string> keptWalk() const { return keptWalk_; }

    /// Why the last walk has read every folder; none when it did not.
    WalkDoubt doubt() const { return doubt_; }

    /// What the last analysis knows of files that it has compared, also after a cancelled one: the
    /// next begins from there. Null before the first one.
    std::shared_ptr<const DigestStore> digests() const { return digests_; }

private:
    void walk(const std::vector<std::string>& excluded, bool hasAccess,
              const CancellationFlag& cancelled, const Progress& progress);

    bool walkAgain(WalkKeeper& keeper, const std::vector<std::string>& excluded, bool hasAccess,
                   const CancellationFlag& cancelled, const Progress& progress);
    void takeBigFiles(std::vector<ScanWorker::BigFileFound> found);
    HomeWalk::Question question(const std::vector<std::string>& excluded, bool hasAccess) const;

    Platform& platform_;
    const PermissionService& permissions_;
    const std::size_t threads_;  // 0 as above
    std::int64_t unreadable_ = 0;
    std::shared_ptr<const FolderTree> folders_;
    std::int64_t hiddenBytes_ = 0;
    std::shared_ptr<const std::string> keptWalk_;
    WalkDoubt doubt_ = WalkDoubt::nothingTold;
    std::shared_ptr<DigestStore> digests_;
};

}  // namespace velto
