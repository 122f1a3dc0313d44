#include "bridge/FurtherIntents.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <fmt/format.h>

#include "analysis/PermissionService.h"
#include "bridge/further_events.h"
#include "platform/values/text.h"

namespace velto {

/// Not on the queue of the trash: walking may take minutes, and only looks.
void FurtherIntents::onScanFurther(const Payload&) {
    if (isLooking_) return;
    isLooking_ = true;
    Platform& platform = context_.platform;
    platform.dispatcher->global(QualityOfService::utility, [&platform, weak = weak_from_this(),
                                                            begun = context_.lists.mark(),
                                                            excluded = context_.exclusions.paths(),
                                                            smallest = context_.smallest,
                                                            cancelled = cancelled_] {
        if (weak.expired()) return;
        const auto tell = [&](std::vector<FurtherGroup> found, bool isLast) {
            platform.dispatcher->main([weak, begun, isLast, found = std::move(found)] {
                if (const auto self = weak.lock()) self->show(found, begun, isLast);
            });
        };
        std::vector<FurtherGroup> groups;
        try {
            const FurtherDiscovery discovery({.platform = platform,
                                              .excluded = excluded,
                                              .hasAccess = PermissionService(platform).hasAccess(),
                                              .smallest = smallest});
            groups = discovery.discover(cancelled);
            if (cancelled.isCancelled()) return;
            const bool hasTools = std::ranges::any_of(groups, [](const FurtherGroup& group) {
                return group.rule->isExplained && !group.bytes;
            });
            if (hasTools) {
                tell(groups, false);
                discovery.askTools(groups);
            }
        } catch (const std::exception& error) {
            platform.log->line("Velto ▶ reglas: " + singleLine(error.what()));
        }
        tell(std::move(groups), true);
    });
}

void FurtherIntents::show(std::vector<FurtherGroup> found, AnalysisLists::Mark begun, bool isLast) {
    if (isLast) isLooking_ = false;
    found = withoutProposed(std::move(found), context_.cleaning.proposals());
    // What has been excluded or moved while it was on the way.
    for (FurtherGroup& group : found) {
        std::erase_if(group.items, [&](const FurtherItem& item) {
            return context_.lists.hasGoneSince(item.path, begun) ||
                   context_.exclusions.isExcluded(item.path);
        });
    }
    std::erase_if(found, [](const FurtherGroup& group) {
        return !group.rule->isExplained && group.items.empty();
    });
    std::size_t items = 0;
    for (const FurtherGroup& group : found)
        items += group.items.size();
    context_.platform.log->line(
        fmt::format("Velto ▶ reglas: {} grupos, {} elementos", found.size(), items));
    context_.lists.replaceFurther(found);
    context_.link.evaluate(events::furtherCleanables(found, !isLast));
}

std::vector<FurtherGroup> withoutProposed(std::vector<FurtherGroup> groups,
                                          const std::vector<Candidate>& proposed) {
    for (FurtherGroup& group : groups) {
        std::erase_if(group.items, [&](const FurtherItem& item) {
            return std::ranges::any_of(proposed, [&](const Candidate& candidate) {
                return isAtOrBelow(item.path, candidate.path) ||
                       isAtOrBelow(candidate.path, item.path);
            });
        });
    }
    std::erase_if(groups, [](const FurtherGroup& group) {
        return !group.rule->isExplained && group.items.empty();
    });
    return groups;
}

}  // namespace velto
