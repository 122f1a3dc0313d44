#pragma once

#include "bridge/payload.h"
#include "platform/ApplicationShell.h"
#include "platform/Platform.h"

namespace velto {

/// The intents for a light or dark window. Main thread.
class ThemeIntents {
public:
    /// Everything outlives the object.
    struct Context {
        const Platform& platform;
        ApplicationShell& shell;
    };

    explicit ThemeIntents(const Context& context) : context_(context) {}

    void onSetTheme(const Payload& payload);
    void onFollowSystemTheme(const Payload& payload);

private:
    Context context_;
};

}  // namespace velto
