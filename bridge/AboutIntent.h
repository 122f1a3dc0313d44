#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "bridge/BridgeLink.h"
#include "bridge/payload.h"
#include "platform/Platform.h"

namespace velto {

/// The intent that asks what this program is and where it keeps what. Main thread.
class AboutIntent {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const Platform& platform;
        std::string_view version;
    };

    explicit AboutIntent(const Context& context) : context_(context) {}

    void onAbout(const Payload& payload);

private:
    Context context_;
};

/// A place in which the program keeps something of its own.
struct OwnPlace {
    std::string_view role;  // "data", "trash", "settings", "schedule"
    std::string path;
};

/// The places of this home, there or not, in the order of `role` above.
std::vector<OwnPlace> ownPlaces(const Platform& platform);

}  // namespace velto
