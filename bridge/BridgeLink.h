#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "bridge/CleanupOutcome.h"

namespace velto {

/// What the intents of one feature ask of the bridge that owns them. Main thread.
class BridgeLink {
public:
    using CleanupWork = std::function<void(CleanupServices&, CleanupOutcome&)>;
    using CleanupReport = std::function<void(const CleanupOutcome&)>;

    virtual ~BridgeLink() = default;

    virtual void evaluate(const std::string& script) = 0;

    /// In the user's language; the detail comes as it is to be read, and goes on one line.
    virtual void toast(std::string_view titleEs, std::string_view titleEn,
                       std::string_view detail) = 0;

    /// A toast of what failed, and the events that go with it.
    virtual void toastFailure(std::string_view titleEs, std::string_view titleEn,
                              const CleanupOutcome& outcome) = 0;

    /// Work on the trash, the history and the cloud folder, in its turn. `report` (which may be
    /// empty) runs on the main thread, before the page is told of the trash and the state, and only
    /// while the bridge lives.
    virtual void enqueue(CleanupWork work, CleanupReport report) = 0;

    /// Begins an analysis unless one runs.
    virtual void startAnalysis() = 0;

    /// The settings are others now: the state takes them over, is remembered and told.
    virtual void showSettings() = 0;

    /// What the trash holds as far as the page knows; null for an unknown id.
    virtual const TrashItem* trashItem(const std::string& id) const = 0;
};

}  // namespace velto
