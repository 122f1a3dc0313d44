#pragma once

#include <memory>
#include <optional>
#include <string>

#include "bridge/BridgeLink.h"
#include "bridge/BridgeState.h"
#include "bridge/payload.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"

namespace velto {

/// The intent that shows what a listed file holds: large files and duplicates of the analysis that
/// the page has, and nothing else. Main thread; reading is done elsewhere. Make it with
/// std::make_shared.
class PreviewIntents : public std::enable_shared_from_this<PreviewIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const BridgeState& state;
        Platform& platform;
    };

    explicit PreviewIntents(const Context& context) : context_(context) {}
    ~PreviewIntents();
    PreviewIntents(const PreviewIntents&) = delete;
    PreviewIntents& operator=(const PreviewIntents&) = delete;

    /// A later one takes the place of one that is not answered yet; one without a path only ends
    /// it.
    void onPreview(const Payload& payload);

private:
    bool isListed(const std::string& path) const;

    Context context_;
    std::optional<CancellationFlag> reading_;
};

}  // namespace velto
