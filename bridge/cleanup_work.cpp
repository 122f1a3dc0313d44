#include <algorithm>
#include <exception>
#include <iterator>
#include <unordered_set>

#include "bridge/CleanupOutcome.h"
#include "bridge/FolderIntents.h"
#include "bridge/JSBridge.h"
#include "bridge/MaintenanceIntents.h"
#include "bridge/MeasurementIntents.h"
#include "bridge/events.h"
#include "bridge/measurement_events.h"
#include "bridge/selection_events.h"
#include "cleaning/SpaceSharing.h"
#include "platform/values/text.h"

namespace velto {
namespace {

std::unordered_set<std::string> idsOf(const std::vector<TrashItem>& items) {
    std::unordered_set<std::string> ids;
    for (const TrashItem& item : items)
        ids.insert(item.id);
    return ids;
}

/// The items whose place is free: restored, they will be at it and not beside it.
std::vector<TrashItem> withFreePlace(const std::vector<TrashItem>& items,
                                     const FileManager& files) {
    std::vector<TrashItem> found;
    std::ranges::copy_if(items, std::back_inserter(found),
                         [&](const TrashItem& item) { return !files.exists(item.originalPath); });
    return found;
}

/// What the trash holds and did not before has left its place, whoever has moved it; what it does
/// not hold any more and stands where it came from is back.
void noteMoves(const std::vector<TrashItem>& before, const std::vector<TrashItem>& homeless,
               CleanupOutcome& outcome, const FileManager& files) {
    const std::vector<TrashItem>& now = outcome.trash->items;
    const auto idsBefore = idsOf(before);
    const auto idsNow = idsOf(now);
    for (const TrashItem& item : now) {
        if (!idsBefore.contains(item.id)) outcome.gone.push_back(item.originalPath);
    }
    for (const TrashItem& item : homeless) {
        if (!idsNow.contains(item.id) && files.exists(item.originalPath)) {
            outcome.back.push_back(item.originalPath);
        }
    }
}

std::optional<Refusal> refusalOf(const std::exception& error) {
    if (const auto* selection = dynamic_cast<const RefusedSelection*>(&error)) {
        return selection->refusal();
    }
    const auto* refused = dynamic_cast<const TrashError*>(&error);
    if (refused == nullptr) return std::nullopt;
    return Refusal{.items = {{.path = "", .reason = refused->reason()}}, .rest = {}};
}

}  // namespace

std::shared_ptr<const CleanupOutcome> carryOut(
    const Platform& platform, CleanupServices& services,
    const std::function<void(CleanupServices&, CleanupOutcome&)>& work) {
    auto outcome = std::make_shared<CleanupOutcome>();
    const std::vector<TrashItem> before = services.trash.items();
    const std::vector<TrashItem> homeless = withFreePlace(before, *platform.files);
    try {
        work(services, *outcome);
    } catch (const std::exception& error) {
        platform.log->line("Velto ▶ no se pudo: " + singleLine(error.what()));
        outcome->hasActed = false;
        outcome->failure = failureText(error, platform.layout);
        outcome->refusal = refusalOf(error);
        if (const auto* blocked = dynamic_cast<const ReturnBlocked*>(&error)) {
            outcome->blocked = {.itemID = blocked->item().id, .obstacle = blocked->path()};
        }
    }
    outcome->returned = services.trash.takeReturned();
    const auto trash = std::make_shared<const TrashSnapshot>(
        TrashSnapshot{.items = services.trash.items(), .bytes = services.trash.exactSizes()});
    // Of thousands of items this would hold the window up.
    if (trash->items != before) {
        outcome->trashScript = events::trashState(trash->items);
        outcome->sizesScript = events::exactTrashSizes(trash->bytes);
    }
    outcome->held = heldItems(trash->items, services.trash.operations(), trash->bytes,
                              TakenItems(*platform.files, platform.layout));
    outcome->trash = trash;
    outcome->waiting = services.trash.waitingItems();
    outcome->history = services.history.entries();
    outcome->volume = volumeFigures(*platform.volumes, platform.layout.home);
    noteMoves(before, homeless, *outcome, *platform.files);
    return outcome;
}

void JSBridge::runCleanup(CleanupWork work, OwnReport report) {
    const Platform& platform = platform_;
    cleanups_.run([&platform, weak = weak_from_this(), work = std::move(work),
                   report = std::move(report)](CleanupServices& services) {
        if (weak.expired()) return;
        const auto outcome = carryOut(platform, services, work);
        platform.dispatcher->main([weak, outcome, report] {
            if (const auto bridge = weak.lock()) bridge->finishCleanup(*outcome, report);
        });
    });
}

void JSBridge::enqueue(CleanupWork work, CleanupReport report) {
    runCleanup(std::move(work),
               [report = std::move(report)](JSBridge&, const CleanupOutcome& outcome) {
                   if (report) report(outcome);
               });
}

const TrashItem* JSBridge::trashItem(const std::string& id) const {
    if (!trash_) return nullptr;
    const auto item = std::ranges::find(trash_->items, id, &TrashItem::id);
    return item == trash_->items.end() ? nullptr : &*item;
}

void JSBridge::toastFailure(std::string_view titleEs, std::string_view titleEn,
                            const CleanupOutcome& outcome) {
    // First, so that the page has its own words ready for the message.
    if (outcome.refusal) evaluate(events::refused(*outcome.refusal, platform_.layout.home));
    toast(titleEs, titleEn, language_.text(outcome.failure->spanish, outcome.failure->english));
    if (outcome.blocked) evaluate(events::restoreBlocked(*outcome.blocked));
}

void JSBridge::finishCleanupAnywhere(const CleanupOutcome& outcome) {
    if (const auto bridge = current()) bridge->finishCleanup(outcome, nullptr);
}

void JSBridge::finishCleanup(const CleanupOutcome& outcome, const OwnReport& report) {
    lists_.noteGone(outcome.gone);
    lists_.noteBack(outcome.back);
    const bool isFirst = !trash_;
    const bool hasTrashChanged =
        isFirst || outcome.trash->items != trash_->items || outcome.waiting != waiting_;
    const bool hasHistoryChanged = outcome.history != history_;
    trash_ = outcome.trash;
    measurementIntents_->takeTrash(outcome.trash);
    folderIntents_->takeTrash(outcome);
    const bool hasHeldChanged = maintenanceIntents_->takeHeld(outcome.held);
    const bool hadWaiting = !waiting_.empty();
    waiting_ = outcome.waiting;
    history_ = outcome.history;
    if (report) report(*this, outcome);
    const bool hasStateChanged = updateState(outcome) || hasHistoryChanged || outcome.hasActed;
    if (isFirst) {
        // Read while the page was being made; it is told when it has loaded.
        if (isWaitingForTrash_ && hasStateChanged) pushState();
        if (isWaitingForTrash_) finishBoot();
        return;
    }
    if (const auto renamed = events::putBack(outcome.returned)) evaluate(*renamed);
    if (hasTrashChanged) {
        // First: the page does not list what waits among what can be put back.
        if (hadWaiting || !waiting_.empty()) evaluate(events::trashWaiting(waiting_));
        pushTrash(outcome.trashScript);
    }
    if (hasHeldChanged) maintenanceIntents_->tell();
    if (hasTrashChanged || hasStateChanged) pushState();
    measurementIntents_->tellNewTrash(outcome.sizesScript);
}

/// Brings the current analysis up to date and remembers it. True when the page sees a difference.
bool JSBridge::updateState(const CleanupOutcome& outcome) {
    if (!bootState) return false;
    DiskState& state = bootState->state;
    DiskState updated = state;
    lists_.show(updated);
    updated.history = history_;
    updated.settings = settings_.record();
    if (outcome.hasActed && outcome.volume.total > 0) {
        updated.total = outcome.volume.total;
        updated.free = outcome.volume.free;
        updated.ser = freeSpaceScore(updated.free, updated.total);
    }
    if (updated == state) return false;
    state = std::move(updated);
    rememberState();
    return true;
}

/// `script` tells the page of the list, if it was made already.
void JSBridge::pushTrash(const std::string& script) {
    evaluate(events::trashChanged(sumOf(trash_->items)));
    evaluate(script.empty() ? events::trashState(trash_->items) : script);
}

void JSBridge::refreshTrash() {
    // What another process has moved away since the analysis is not offered any more either, unless
    // something stands there again.
    const FileManager& files = *platform_.files;
    const double since = bootState ? bootState->stamp : 0;
    runCleanup(
        [&files, &platform = platform_, since](CleanupServices& services, CleanupOutcome& outcome) {
            outcome.hasActed = false;
            services.cloud.settle();
            SpaceSharing(platform).settle();
            for (const TrashItem& item : services.trash.items()) {
                if (item.taken > since && !files.exists(item.originalPath)) {
                    outcome.gone.push_back(item.originalPath);
                }
            }
        },
        nullptr);
}

}  // namespace velto
