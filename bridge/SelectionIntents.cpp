#include "bridge/SelectionIntents.h"

#include <memory>

#include "bridge/selection_events.h"
#include "cleaning/selection_check.h"

namespace velto {

/// In its turn among the work on the trash: what a cleanup before it moves is gone by then. What
/// has gone behind the program's back leaves its lists, too.
void SelectionIntents::onCheckSelection(const Payload& payload) {
    const auto paths = payload::pathsMember(payload, "paths");
    const auto request = payload::integerMember(payload, "request");
    if (!paths || !request) return;
    const auto found = std::make_shared<SelectionCheck>();
    context_.link.enqueue(
        [&platform = context_.platform, paths = *paths, found](CleanupServices&,
                                                               CleanupOutcome& outcome) {
            outcome.hasActed = false;
            *found = checkSelection(platform, paths);
            for (const SelectionCheck::Stay& stay : found->stays) {
                if (stay.reason == SelectionCheck::Reason::gone) outcome.gone.push_back(stay.path);
            }
        },
        [&link = context_.link, found, request = *request](const CleanupOutcome&) {
            link.evaluate(events::selection(*found, request));
        });
}

}  // namespace velto
