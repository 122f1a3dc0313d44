#pragma once

#include <memory>

#include "bridge/BridgeLink.h"
#include "bridge/BridgeState.h"
#include "bridge/QuitIntents.h"
#include "bridge/payload.h"
#include "platform/Platform.h"

namespace velto {

/// The live view of the machine: makes the monitor in `state`, tells the page its samples and ends
/// it. Main thread. Make it with std::make_shared.
class SystemIntents : public std::enable_shared_from_this<SystemIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        BridgeState& state;
        Platform& platform;
        QuitIntents& quitting;  // is told what can be quit
    };

    explicit SystemIntents(const Context& context);
    ~SystemIntents();
    SystemIntents(const SystemIntents&) = delete;
    SystemIntents& operator=(const SystemIntents&) = delete;

    /// From now on the page is told each sample.
    void sendSamples();

    void onSystemWatch(const Payload& payload);

private:
    Context context_;
};

}  // namespace velto
