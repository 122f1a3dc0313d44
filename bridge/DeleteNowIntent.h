#pragma once

#include "bridge/BridgeLink.h"
#include "bridge/CleaningIntents.h"
#include "bridge/payload.h"
#include "platform/Platform.h"
#include "settings/AppLanguage.h"

namespace velto {

/// The intent that deletes for good, without waiting in the trash, what is certain to be made again
/// and only while the disk is nearly full. Main thread.
///
/// What goes is judged anew in its turn: the disk, each candidate, and whether the trash would take
/// it. Then it is moved into the trash as one operation, which is in the history, and each item is
/// deleted from there. Whatever is cut off or fails leaves the rest in the trash, where it can be
/// put back.
class DeleteNowIntent {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const Platform& platform;
        const AppLanguage& language;
        const CleaningIntents& cleaning;  // knows what was proposed
    };

    explicit DeleteNowIntent(const Context& context) : context_(context) {}

    void onDeleteNow(const Payload& payload);

private:
    struct Work;

    static void carryOut(const Platform& platform, Work& work, CleanupServices& services,
                         CleanupOutcome& outcome);
    static void tell(const Context& context, const Work& work, const CleanupOutcome& outcome);

    Context context_;
};

}  // namespace velto
