#include "bridge/CleaningIntents.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "analysis/PermissionService.h"
#include "bridge/CleanupOutcome.h"
#include "bridge/events.h"

namespace velto {

/// Not on the queue of the trash: measuring may take minutes, and only looks.
void CleaningIntents::onScanCleanables(const Payload&) {
    Platform& platform = context_.platform;
    platform.dispatcher->global(
        QualityOfService::userInitiated,
        [&platform, weak = weak_from_this(), begun = context_.lists.mark()] {
            if (weak.expired()) return;
            const PermissionService permissions(platform);
            CleaningRules rules(platform, [&] { return permissions.hasAccess(); });
            auto found = rules.discoverAll();
            // First, so that the page knows what it may preselect before it has anything to show.
            const std::string facts = events::cleanableFacts(CacheJudge(platform).facts(found));
            const std::string ages = events::cleanableAges(rules.agesInside(found));
            platform.dispatcher->main([weak, begun, facts, ages, found = std::move(found)] {
                const auto self = weak.lock();
                if (!self) return;
                self->context_.link.evaluate(ages);
                self->context_.link.evaluate(facts);
                self->show(found, begun);
            });
        });
}

void CleaningIntents::show(std::vector<Candidate> found, AnalysisLists::Mark begun) {
    // It may have been moved after it was measured.
    std::erase_if(found, [&](const Candidate& candidate) {
        return context_.lists.hasGoneSince(candidate.path, begun);
    });
    context_.lists.replaceCleanables(found);
    context_.measurement.tellCleanables(found);
    context_.link.evaluate(events::cleanables(found));
    proposed_ = std::move(found);
}

const Candidate* CleaningIntents::proposal(const std::string& path) const {
    const auto found = std::ranges::find(proposed_, path, &Candidate::path);
    return found == proposed_.end() ? nullptr : &*found;
}

void CleaningIntents::onMoveCloud(const Payload& payload) {
    const auto paths = payload::pathsMember(payload, "paths");
    const bool hasDirection = payload::member(payload, "direction") != nullptr;
    const auto direction = hasDirection ? payload::stringMember(payload, "direction") : "to";
    if (!paths || !direction || (*direction != "to" && *direction != "from")) return;
    const auto result = std::make_shared<CloudFolder::Result>();
    context_.link.enqueue(
        [paths = *paths, isTo = *direction == "to", result](CleanupServices& services,
                                                            CleanupOutcome& outcome) {
            *result = isTo ? services.cloud.moveTo(paths) : services.cloud.moveFrom(paths);
            outcome.hasActed = !result->moved.empty();
            outcome.gone = result->moved;
            outcome.back = result->arrivedAt;
        },
        [&link = context_.link, result, direction = *direction](const CleanupOutcome&) {
            link.evaluate(events::cloudMove(result->moved, result->failed, direction));
        });
}

}  // namespace velto
