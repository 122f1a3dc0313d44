#pragma once

#include <memory>
#include <string>

#include "analysis/ExclusionService.h"
#include "bridge/BridgeLink.h"
#include "bridge/payload.h"
#include "platform/ApplicationShell.h"
#include "platform/Platform.h"
#include "settings/AppLanguage.h"

namespace velto {

/// The intents about what the user keeps out of the analysis. Main thread. Make it with
/// std::make_shared.
class ExclusionIntents : public std::enable_shared_from_this<ExclusionIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const Platform& platform;
        const AppLanguage& language;
        ExclusionService& exclusions;
        ApplicationShell& shell;
    };

    explicit ExclusionIntents(const Context& context) : context_(context) {}

    void onAddExclusion(const Payload& payload);
    void onRemoveExclusion(const Payload& payload);
    void onExclusions(const Payload& payload);

    /// Lets the user choose a folder and leaves it out; one that makes no sense is refused in
    /// words.
    void onChooseExclusion(const Payload& payload);

private:
    void exclude(const std::string& path);
    void excludeChosen(const std::string& folder);
    void tell();

    Context context_;
};

}  // namespace velto
