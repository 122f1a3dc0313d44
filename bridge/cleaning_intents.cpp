#include <memory>
#include <utility>

#include "bridge/CleanupOutcome.h"
#include "bridge/JSBridge.h"
#include "bridge/MeasurementIntents.h"
#include "bridge/events.h"

namespace velto {

/// Not on the queue of the trash: measuring may take minutes, and only looks.
void JSBridge::onScanCleanables(const Payload&) {
    Platform& platform = platform_;
    platform.dispatcher->global(
        QualityOfService::userInitiated,
        [&platform, weak = weak_from_this(), begun = lists_.mark()] {
            if (weak.expired()) return;
            const PermissionService permissions(platform);
            CleaningRules rules(platform, [&] { return permissions.hasAccess(); });
            auto found = rules.discoverAll();
            // First, so that the page knows what it may preselect before it has anything to show.
            const std::string facts = events::cleanableFacts(CacheJudge(platform).facts(found));
            platform.dispatcher->main([weak, begun, facts, found = std::move(found)] {
                const auto bridge = weak.lock();
                if (!bridge) return;
                bridge->evaluate(facts);
                bridge->showCleanables(found, begun);
            });
        });
}

void JSBridge::showCleanables(std::vector<Candidate> found, AnalysisLists::Mark begun) {
    // It may have been moved after it was measured.
    std::erase_if(found, [&](const Candidate& candidate) {
        return lists_.hasGoneSince(candidate.path, begun);
    });
    lists_.replaceCleanables(found);
    measurementIntents_->tellCleanables(found);
    evaluate(events::cleanables(found));
}

void JSBridge::onMoveCloud(const Payload& payload) {
    const auto paths = payload::pathsMember(payload, "paths");
    const bool hasDirection = payload::member(payload, "direction") != nullptr;
    const auto direction = hasDirection ? payload::stringMember(payload, "direction") : "to";
    if (!paths || !direction || (*direction != "to" && *direction != "from")) return;
    const auto result = std::make_shared<CloudFolder::Result>();
    runCleanup(
        [paths = *paths, isTo = *direction == "to", result](CleanupServices& services,
                                                            CleanupOutcome& outcome) {
            *result = isTo ? services.cloud.moveTo(paths) : services.cloud.moveFrom(paths);
            outcome.hasActed = !result->moved.empty();
            outcome.gone = result->moved;
            outcome.back = result->arrivedAt;
        },
        [result, direction = *direction](JSBridge& bridge, const CleanupOutcome&) {
            bridge.evaluate(events::cloudMove(result->moved, result->failed, direction));
        });
}

}  // namespace velto
