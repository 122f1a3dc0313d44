#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bridge/BridgeLink.h"
#include "bridge/BridgeState.h"
#include "bridge/payload.h"
#include "cleaning/SpaceSharing.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"

namespace velto {

/// The intents by which listed duplicates share their space instead of being removed. What the page
/// asks for is taken from the analysis: a group that is not listed, or a file that is not in it, is
/// not touched. Main thread. Make it with std::make_shared.
class SharingIntents : public std::enable_shared_from_this<SharingIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const BridgeState& state;
        Platform& platform;
    };

    explicit SharingIntents(const Context& context) : context_(context) {}
    ~SharingIntents();
    SharingIntents(const SharingIntents&) = delete;
    SharingIntents& operator=(const SharingIntents&) = delete;

    /// Tells what sharing would bring; nothing is changed. A later one takes its place.
    void onForetellSharing(const Payload& payload);

    /// Shares, in its turn among the work on the trash; one at a time.
    void onShareSpace(const Payload& payload);
    /// Ends it after the piece of a file that is under way; what shares by then goes on doing so.
    void onStopSharing(const Payload& payload);

private:
    struct Asked {
        std::string id;
        SpaceSharing::Group group;
    };
    struct Work;

    std::vector<Asked> askedFor(const Payload& payload) const;
    static void carryOut(const Platform& platform, Work& work, CleanupServices& services,
                         CleanupOutcome& outcome, const SpaceSharing::Progress& tell);
    SpaceSharing::Progress teller(const std::shared_ptr<Work>& work);
    void finish(const Work& work, const CleanupOutcome& outcome);

    Context context_;
    std::optional<CancellationFlag> foretelling_;
    std::optional<CancellationFlag> sharing_;  // the one that runs or waits
};

}  // namespace velto
