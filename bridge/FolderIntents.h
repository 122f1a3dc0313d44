#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "analysis/folders/FolderCache.h"
#include "bridge/BridgeLink.h"
#include "bridge/BridgeState.h"
#include "bridge/CleanupQueue.h"
#include "bridge/Departures.h"
#include "bridge/folder_contents.h"
#include "bridge/payload.h"
#include "platform/Platform.h"

namespace velto {

/// The folders of the last analysis, and the intents that ask about them. Main thread; what reads
/// or writes runs elsewhere. Make it with std::make_shared.
class FolderIntents : public std::enable_shared_from_this<FolderIntents> {
public:
    using Folders = std::shared_ptr<const MeasuredFolders>;

    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const BridgeState& state;
        Platform& platform;
        CleanupQueue& cleanups;
    };

    explicit FolderIntents(const Context& context);

    /// Loads what an earlier start has saved, unless that was done; what is asked for meanwhile
    /// waits for it.
    void load();

    /// Takes the folders of an analysis that has just ended. `isSaved`: and keeps them on disk.
    void replace(Folders folders, bool isSaved);

    /// A reset: there are none any more.
    void forget();

    /// Runs `work` on the main thread once loading has ended, which it begins; at once when it has.
    void whenLoaded(std::function<void()> work);

    /// What the trash holds now, and what went back: the totals follow until the next analysis.
    void takeTrash(const CleanupOutcome& outcome);

    void onFolder(const Payload& payload);
    void onSearchFolders(const Payload& payload);

private:
    void countDepartures(const std::vector<VeltoTrashService::Returned>& returned);
    void open(const FolderRequest& question);
    void read(const FolderRequest& question, const VolumeUses& volumes);
    void inBackground(std::function<std::string()> answer, const char* event);

    Context context_;
    std::shared_ptr<FolderCache> cache_;
    Folders folders_;
    Departures departures_;
    SharedTrash trash_;  // as it was told last; null until then
    enum class Loading { notBegun, running, over } loading_ = Loading::notBegun;
    std::vector<std::function<void()>> waiting_;
};

}  // namespace velto
