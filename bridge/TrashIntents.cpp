#include "bridge/TrashIntents.h"

#include <memory>
#include <utility>

#include <fmt/format.h>

#include "bridge/events.h"
#include "bridge/trash_work.h"
#include "platform/values/text.h"
#include "settings/sentence_number.h"

namespace velto {
namespace {

constexpr const char* cleanupKind = "wind";
constexpr double betweenWords = 0.25;  // seconds, on how far an emptying is

}  // namespace

TrashIntents::TrashIntents(const Context& context)
    : link_(context.link),
      platform_(context.platform),
      settings_(context.settings),
      language_(context.language),
      shell_(context.shell),
      lists_(context.lists) {}

void TrashIntents::onDeleteFiles(const Payload& payload) {
    const auto paths = payload::pathsMember(payload, "paths");
    const bool hasKind = payload::member(payload, "kind") != nullptr;
    const auto kind = hasKind ? payload::stringMember(payload, "kind") : cleanupKind;
    if (paths && kind) moveToTrash(*paths, *kind);
}

void TrashIntents::onCleanPaths(const Payload& payload) {
    if (const auto paths = payload::pathsMember(payload, "paths")) moveToTrash(*paths, cleanupKind);
}

void TrashIntents::moveToTrash(const std::vector<std::string>& paths, const std::string& kind) {
    link_.enqueue(
        [&platform = platform_, paths, kind, sizes = knownSizes(paths)](CleanupServices& services,
                                                                        CleanupOutcome& outcome) {
            // Before measuring: what may not be moved is not walked either.
            requireAdmitted(services.trash, paths);
            auto allSizes = sizes;
            measureFolders(paths, platform, allSizes);
            const Operation operation = moveSelection(services.trash, paths, kind, allSizes);
            services.history.record(operation);
            outcome.gb = operation.gb;
        },
        [this](const CleanupOutcome& outcome) { tellMoved(outcome); });
}

void TrashIntents::tellMoved(const CleanupOutcome& outcome) {
    if (outcome.failure) {
        link_.toastFailure("No se pudo eliminar", "Couldn't remove", outcome);
        return;
    }
    const std::string gb = sentenceNumber(outcome.gb, language_);
    const auto days = settings_.retention();
    link_.toast("Eliminado", "Removed",
                language_.text(
                    fmt::format("{} GB en la Papelera de Velto. Se conservan {} días.", gb, days),
                    fmt::format("{} GB in Velto Trash. Kept for {} days.", gb, days)));
}

/// What the analysis and the cleaning rules have measured.
VeltoTrashService::KnownSizes TrashIntents::knownSizes(
    const std::vector<std::string>& paths) const {
    VeltoTrashService::KnownSizes sizes;
    for (const std::string& path : paths) {
        if (const auto size = lists_.sizeOf(path)) sizes[path] = *size;
    }
    return sizes;
}

void TrashIntents::onUndoLast(const Payload&) {
    link_.enqueue(
        [](CleanupServices& services, CleanupOutcome& outcome) {
            const auto& operations = services.trash.operations();
            outcome.hasActed = !operations.empty();
            if (!outcome.hasActed) return;
            const std::string id = operations.front().id;
            services.trash.undoOperation(id);
            services.history.remove(id);
        },
        [this](const CleanupOutcome& outcome) {
            if (!outcome.failure) return;
            link_.toastFailure("No se pudo deshacer", "Couldn't undo", outcome);
        });
}

void TrashIntents::onRestoreItem(const Payload& payload) {
    const auto id = payload::string(payload);
    if (!id) return;
    link_.enqueue(
        [id = *id](CleanupServices& services, CleanupOutcome&) {
            withItem(services.trash, id, [&] { services.trash.restore(id); });
        },
        [this](const CleanupOutcome& outcome) {
            if (!outcome.failure) return;
            link_.toastFailure("No se pudo restaurar", "Couldn't restore", outcome);
        });
}

/// For an item whose own place is blocked, or that is wanted elsewhere.
void TrashIntents::onRestoreItemTo(const Payload& payload) {
    const auto id = payload::stringMember(payload, "id");
    const TrashItem* const item = id ? link_.trashItem(*id) : nullptr;
    if (item == nullptr) return;
    const std::string name = singleLine(item->name);
    shell_.chooseFolder(
        {.title = std::string(language_.text(fmt::format("Restaurar «{}» en otra carpeta", name),
                                             fmt::format("Restore “{}” to another folder", name))),
         .accept = std::string(language_.text("Restaurar aquí", "Restore here")),
         .decline = std::string(language_.text("Cancelar", "Cancel")),
         .startAt = platform_.layout.home},
        [weak = weak_from_this(), id = *id, name](const std::optional<std::string>& folder) {
            const auto self = weak.lock();
            if (self && folder) self->restoreTo(id, name, *folder);
        });
}

void TrashIntents::restoreTo(const std::string& itemID, const std::string& name,
                             const std::string& folder) {
    link_.enqueue(
        [itemID, folder](CleanupServices& services, CleanupOutcome&) {
            withItem(services.trash, itemID, [&] { services.trash.restoreTo(itemID, folder); });
        },
        [this, name, folder](const CleanupOutcome& outcome) {
            // Titles of their own: the page takes the others for answers to what it has
            // asked.
            if (outcome.failure) {
                link_.toastFailure("No se pudo restaurar ahí", "Couldn't restore there", outcome);
                return;
            }
            const std::string place = shownPath(folder, platform_.layout.home);
            link_.toast("Restaurado", "Restored",
                        language_.text(fmt::format("«{}» está ahora en {}.", name, place),
                                       fmt::format("“{}” is in {} now.", name, place)));
        });
}

/// Of an item that does not wait any more nothing is said: the page is told where it is.
void TrashIntents::onGiveUpWaiting(const Payload& payload) {
    const auto id = payload::stringMember(payload, "id");
    if (!id) return;
    link_.enqueue(
        [id = *id](CleanupServices& services, CleanupOutcome& outcome) {
            outcome.hasActed = services.trash.giveUpWaiting(id);
        },
        [this](const CleanupOutcome& outcome) {
            if (outcome.failure) {
                link_.toastFailure("No se pudo dejar de esperar", "Couldn't stop waiting", outcome);
            } else if (outcome.hasActed) {
                link_.toast("Ya no se espera", "No longer waiting",
                            language_.text("Lo que hay del elemento está en la Papelera de Velto.",
                                           "What there is of the item is in Velto Trash."));
            }
        });
}

void TrashIntents::onPurgeItem(const Payload& payload) {
    const auto id = payload::string(payload);
    if (!id) return;
    link_.enqueue(
        [id = *id](CleanupServices& services, CleanupOutcome&) { deleteForGood(services, {id}); },
        [this](const CleanupOutcome& outcome) {
            if (outcome.failure) {
                link_.toastFailure("No se pudo eliminar", "Couldn't delete", outcome);
            } else {
                link_.toast("Eliminado", "Deleted",
                            language_.text("Eliminado definitivamente.", "Deleted permanently."));
            }
        });
}

/// In their order; the first that fails ends it, and the others stay as they are.
void TrashIntents::onPurgeOperation(const Payload& payload) {
    const auto id = payload::stringMember(payload, "id");
    if (!id) return;
    const auto count = std::make_shared<std::size_t>(0);
    link_.enqueue(
        [id = *id, count](CleanupServices& services, CleanupOutcome& outcome) {
            std::vector<std::string> items;
            for (const TrashItem& item : services.trash.items()) {
                if (item.opID == id) items.push_back(item.id);
            }
            outcome.hasActed = !items.empty();
            *count = items.size();
            deleteForGood(services, items);
        },
        [this, count](const CleanupOutcome& outcome) {
            if (outcome.failure) {
                link_.toastFailure("No se pudo eliminar", "Couldn't delete", outcome);
                return;
            }
            link_.toast("Eliminado", "Deleted",
                        *count == 1
                            ? language_.text("1 elemento eliminado definitivamente.",
                                             "1 item deleted permanently.")
                            : language_.text(
                                  fmt::format("{} elementos eliminados definitivamente.", *count),
                                  fmt::format("{} items deleted permanently.", *count)));
        });
}

/// Tells the page how far the emptying is, a few times a second, from the thread of the work.
VeltoTrashService::Progress TrashIntents::emptyingTold() {
    return [&platform = platform_, weak = weak_from_this(), last = platform_.clock->monotonic()](
               std::size_t done, std::size_t of) mutable {
        const double now = platform.clock->monotonic();
        if (now - last < betweenWords) return;
        last = now;
        platform.dispatcher->main([weak, done, of] {
            if (const auto self = weak.lock())
                self->link_.evaluate(events::trashEmptying(done, of));
        });
    };
}

void TrashIntents::onPurgeTrash(const Payload&) {
    link_.enqueue(
        [tell = emptyingTold()](CleanupServices& services, CleanupOutcome&) {
            services.trash.emptyTrash([&](std::size_t done, std::size_t of) {
                showDone(services, done, of);
                tell(done, of);
            });
        },
        [this](const CleanupOutcome& outcome) {
            if (outcome.failure) {
                link_.toastFailure("No se pudo vaciar", "Couldn't empty Trash", outcome);
            } else {
                link_.toast("Papelera vaciada", "Trash emptied",
                            language_.text("Elementos eliminados definitivamente.",
                                           "Items deleted permanently."));
            }
        });
}

/// In its turn among the work on the trash, which writes the history too.
void TrashIntents::onClearHistory(const Payload&) {
    link_.enqueue(
        [](CleanupServices& services, CleanupOutcome& outcome) {
            outcome.hasActed = !services.history.entries().empty();
            services.history.clear();
        },
        nullptr);
}

}  // namespace velto
