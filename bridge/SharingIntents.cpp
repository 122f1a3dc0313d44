#include "bridge/SharingIntents.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>

#include "bridge/sharing_events.h"
#include "bridge/trash_work.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"
#include "platform/values/units.h"
#include "platform/values/uuid.h"

namespace velto {
namespace {

constexpr const char* sharingKind = "share";
constexpr double betweenWordsOnSharing = 0.25;  // seconds

/// As the history shows it, told from removals by its kind.
Operation operationOf(const std::vector<SpaceSharing::Copy>& copies, std::int64_t bytes,
                      double now) {
    Operation operation{.id = "sh" + newUUID(),
                        .ts = now,
                        .gb = roundedToTenth(gigabytes(bytes)),
                        .items = {},
                        .kind = sharingKind};
    for (const SpaceSharing::Copy& copy : copies) {
        TrashItem item;
        item.name = lastPathComponent(copy.path);
        item.gb = gigabytes(copy.space.bytes);
        operation.items.push_back(std::move(item));
    }
    return operation;
}

}  // namespace

struct SharingIntents::Work {
    std::vector<Asked> asked;
    double compared = 0;
    CancellationFlag stopped;
    std::size_t all = 0;   // copies
    std::size_t done = 0;  // of groups that are behind
    double toldAt = 0;     // when the page was told last
    events::Shared result;
};

SharingIntents::~SharingIntents() {
    if (foretelling_) foretelling_->cancel();
    // What shares space is whole at every instant: it need not be brought to its end.
    if (sharing_) sharing_->cancel();
}

/// The groups of the payload as far as they are listed, with what is to be kept of each; the
/// recommended copy when it names none. Without a list: all.
std::vector<SharingIntents::Asked> SharingIntents::askedFor(const Payload& payload) const {
    std::vector<Asked> asked;
    if (!context_.state.bootState) return asked;
    std::map<std::string, std::string> kept;  // by id
    const nlohmann::json* const list = payload::member(payload, "groups");
    if (list != nullptr) {
        if (!list->is_array()) return asked;
        for (const auto& one : *list) {
            const auto id = payload::stringMember(one, "id");
            if (id) kept[*id] = payload::pathMember(one, "kept").value_or("");
        }
    }
    for (const DupGroup& group : context_.state.bootState->state.dupGroups) {
        const auto wanted = kept.find(group.id);
        if (list != nullptr && wanted == kept.end()) continue;
        auto keep = std::ranges::find(group.paths, wanted == kept.end() ? "" : wanted->second);
        const bool isNamed = wanted != kept.end() && !wanted->second.empty();
        if (isNamed && keep == group.paths.end()) continue;
        if (!isNamed) {
            const auto index = static_cast<std::size_t>(std::max<std::int64_t>(
                0, std::min(group.recommended, static_cast<std::int64_t>(group.paths.size()) - 1)));
            keep = group.paths.begin() + static_cast<std::ptrdiff_t>(index);
        }
        Asked one{.id = group.id, .group = {.kept = *keep, .copies = {}}};
        for (const std::string& path : group.paths) {
            if (path != *keep) one.group.copies.push_back(path);
        }
        asked.push_back(std::move(one));
    }
    return asked;
}

void SharingIntents::onForetellSharing(const Payload& payload) {
    const auto request = payload::integerMember(payload, "request");
    if (!request) return;
    if (foretelling_) foretelling_->cancel();
    foretelling_ = CancellationFlag();
    const double compared = context_.state.bootState ? context_.state.bootState->stamp : 0;
    Platform& platform = context_.platform;
    platform.dispatcher->global(
        QualityOfService::utility, [&platform, weak = weak_from_this(), asked = askedFor(payload),
                                    compared, cancelled = *foretelling_, request = *request] {
            const SpaceSharing sharing(platform);
            std::map<std::string, events::Sharable> found;
            for (const Asked& one : asked) {
                if (cancelled.isCancelled()) return;
                found[one.id] = {one.group.kept, sharing.foretell(one.group, compared)};
            }
            platform.dispatcher->main([weak, cancelled, script = events::sharable(request, found)] {
                const auto self = weak.lock();
                if (self && !cancelled.isCancelled()) self->context_.link.evaluate(script);
            });
        });
}

void SharingIntents::onShareSpace(const Payload& payload) {
    // Whoever wants files changed says which.
    if (sharing_ || payload::member(payload, "groups") == nullptr) return;
    const auto work = std::make_shared<Work>();
    work->asked = askedFor(payload);
    if (work->asked.empty()) return;
    for (const Asked& one : work->asked)
        work->all += one.group.copies.size();
    work->compared = context_.state.bootState->stamp;
    sharing_ = work->stopped;
    context_.link.evaluate(events::sharing(0, work->all, 0));
    context_.link.enqueue(
        [&platform = context_.platform, work, tell = teller(work)](CleanupServices& services,
                                                                   CleanupOutcome& outcome) {
            carryOut(platform, *work, services, outcome, tell);
        },
        [weak = weak_from_this(), work](const CleanupOutcome& outcome) {
            if (const auto self = weak.lock()) self->finish(*work, outcome);
        });
}

/// Tells the page how far it is, from the thread that works, a few times a second at most.
SpaceSharing::Progress SharingIntents::teller(const std::shared_ptr<Work>& work) {
    return [&platform = context_.platform, work, weak = weak_from_this()](std::size_t copies,
                                                                          std::int64_t bytes) {
        const double now = platform.clock->monotonic();
        if (now - work->toldAt < betweenWordsOnSharing) return;
        work->toldAt = now;
        const std::size_t done = work->done + (copies > 0 ? copies - 1 : 0);
        platform.dispatcher->main([weak, script = events::sharing(done, work->all, bytes)] {
            const auto self = weak.lock();
            if (self && self->sharing_) self->context_.link.evaluate(script);
        });
    };
}

void SharingIntents::carryOut(const Platform& platform, Work& work, CleanupServices& services,
                              CleanupOutcome& outcome, const SpaceSharing::Progress& tell) {
    const SpaceSharing sharing(platform);
    events::Shared& result = work.result;
    std::vector<SpaceSharing::Copy> shared;
    for (const Asked& one : work.asked) {
        const auto copies = sharing.share(
            one.group, work.compared, [&] { return work.stopped.isCancelled(); }, tell);
        for (const SpaceSharing::Copy& copy : copies) {
            result.bytes += copy.space.bytes;
            if (!copy.space.isExact) result.isExact = false;
            if (!copy.stays || copy.space.bytes > 0) shared.push_back(copy);
            if (!copy.stays) ++result.files;
            if (copy.stays) result.stays.push_back(copy);
        }
        work.done += one.group.copies.size();
        showDone(services, work.done, work.all);
        if (work.stopped.isCancelled()) break;
    }
    result.isStopped = work.stopped.isCancelled() && work.done < work.all;
    outcome.hasActed = !shared.empty();
    if (shared.empty()) return;
    const Operation operation = operationOf(shared, result.bytes, platform.clock->now());
    services.history.record(operation);
    outcome.gb = operation.gb;
    platform.log->line(fmt::format("Velto ▶ espacio compartido: {} archivos, {} bytes",
                                   result.files, result.bytes));
}

void SharingIntents::finish(const Work& work, const CleanupOutcome& outcome) {
    sharing_.reset();
    for (const SpaceSharing::Copy& copy : work.result.stays) {
        if (copy.detail.empty()) continue;
        context_.platform.log->line("Velto ▶ espacio compartido: " + singleLine(copy.detail));
    }
    context_.link.evaluate(events::shared(work.result));
    if (outcome.failure) {
        context_.link.toastFailure("No se pudo compartir el espacio", "Couldn't share the space",
                                   outcome);
    }
}

void SharingIntents::onStopSharing(const Payload&) {
    if (sharing_) sharing_->cancel();
}

}  // namespace velto
