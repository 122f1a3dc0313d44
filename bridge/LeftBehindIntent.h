#pragma once

#include <memory>

#include "analysis/ExclusionService.h"
#include "bridge/BridgeLink.h"
#include "bridge/payload.h"
#include "platform/Platform.h"

namespace velto {

/// The intent that looks for what applications have left behind that are gone. Main thread. Make it
/// with std::make_shared.
class LeftBehindIntent : public std::enable_shared_from_this<LeftBehindIntent> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const Platform& platform;
        const ExclusionService& exclusions;
    };

    explicit LeftBehindIntent(const Context& context) : context_(context) {}

    /// Tells the page all that is found and not excluded; a second one while it looks does nothing.
    void onLeftBehind(const Payload& payload);

private:
    void tell(const nlohmann::json& found);

    Context context_;
    bool isLooking_ = false;
};

}  // namespace velto
