#pragma once

#include "bridge/BridgeLink.h"
#include "bridge/payload.h"
#include "platform/Platform.h"

namespace velto {

/// The intent that asks what of a selection can be moved, before anything is. Main thread.
class SelectionIntents {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const Platform& platform;
    };

    explicit SelectionIntents(const Context& context) : context_(context) {}

    void onCheckSelection(const Payload& payload);

private:
    Context context_;
};

}  // namespace velto
