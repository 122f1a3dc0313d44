#include "bridge/DeleteNowIntent.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "analysis/post_processing.h"
#include "bridge/failure_text.h"
#include "bridge/trash_work.h"
#include "cleaning/full_disk.h"
#include "cleaning/known_caches.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr const char* cleanupKind = "wind";

bool hasLittleRoom(const Platform& platform) {
    const VolumeFigures volume = volumeFigures(*platform.volumes, platform.layout.home);
    return isNearlyFull(volume.free, volume.total);
}

/// As the machine is now: what belongs to a program that has been started since is not.
bool areCertain(const std::vector<Candidate>& candidates, const Platform& platform) {
    const FactsByPath facts = CacheJudge(platform).facts(candidates);
    return std::ranges::all_of(candidates, [&](const Candidate& candidate) {
        const auto fact = facts.find(candidate.path);
        return fact != facts.end() && fact->second.isCertain();
    });
}

}  // namespace

struct DeleteNowIntent::Work {
    std::vector<std::string> paths;
    std::vector<Candidate> candidates;
    std::optional<FailureText> objection;  // nothing was done
    std::optional<FailureText> failure;    // the rest is in the trash
    std::size_t deleted = 0;
};

void DeleteNowIntent::onDeleteNow(const Payload& payload) {
    const auto paths = payload::pathsMember(payload, "paths");
    if (!paths || paths->empty()) return;
    const auto work = std::make_shared<Work>();
    work->paths = *paths;
    for (const std::string& path : *paths) {
        if (const Candidate* known = context_.cleaning.proposal(path))
            work->candidates.push_back(*known);
    }
    context_.link.enqueue(
        [&platform = context_.platform, work](CleanupServices& services, CleanupOutcome& outcome) {
            carryOut(platform, *work, services, outcome);
        },
        [context = context_, work](const CleanupOutcome& outcome) {
            tell(context, *work, outcome);
        });
}

void DeleteNowIntent::carryOut(const Platform& platform, Work& work, CleanupServices& services,
                               CleanupOutcome& outcome) {
    outcome.hasActed = false;
    if (!hasLittleRoom(platform)) {
        work.objection = {"El disco ya no está casi lleno.",
                          "The disk is not nearly full any more."};
        return;
    }
    if (work.candidates.size() != work.paths.size() || !areCertain(work.candidates, platform)) {
        work.objection = {"Algo de ello ya no es seguro: puede que esté en uso. Busca de nuevo.",
                          "Some of it is not certain any more: it may be in use. Look again."};
        return;
    }
    requireAdmitted(services.trash, work.paths);
    VeltoTrashService::KnownSizes sizes;
    for (const Candidate& candidate : work.candidates)
        sizes[candidate.path] = candidate.gb;
    const Operation operation = moveSelection(services.trash, work.paths, cleanupKind, sizes);
    services.history.record(operation);
    outcome.hasActed = true;
    outcome.gb = operation.gb;
    try {
        for (const TrashItem& item : operation.items) {
            deleteForGood(services, {item.id});
            showDone(services, ++work.deleted, operation.items.size());
            outcome.gone.push_back(item.originalPath);
        }
    } catch (const std::exception& error) {
        // What was deleted before has happened, so the work as a whole has not failed.
        platform.log->line("Velto ▶ no se pudo: " + singleLine(error.what()));
        work.failure = failureText(error, platform.layout);
    }
}

void DeleteNowIntent::tell(const Context& context, const Work& work,
                           const CleanupOutcome& outcome) {
    BridgeLink& link = context.link;
    const AppLanguage& language = context.language;
    if (work.objection) {
        link.toast("No se pudo eliminar ahora", "Couldn't delete now",
                   language.text(work.objection->spanish, work.objection->english));
    } else if (outcome.failure) {
        link.toastFailure("No se pudo eliminar ahora", "Couldn't delete now", outcome);
    } else if (work.failure) {
        const std::size_t all = work.paths.size();
        link.toast(
            "Eliminado en parte", "Deleted in part",
            language.text(
                fmt::format("{} Eliminados: {} de {}. El resto está en la Papelera de Velto.",
                            work.failure->spanish, work.deleted, all),
                fmt::format("{} Deleted: {} of {}. The rest is in Velto Trash.",
                            work.failure->english, work.deleted, all)));
    } else {
        link.toast(
            "Eliminado definitivamente", "Deleted for good",
            work.deleted == 1
                ? language.text("1 elemento; su espacio vuelve a estar libre.",
                                "1 item; its space is free again.")
                : language.text(
                      fmt::format("{} elementos; su espacio vuelve a estar libre.", work.deleted),
                      fmt::format("{} items; their space is free again.", work.deleted)));
    }
}

}  // namespace velto
