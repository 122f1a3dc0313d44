#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "bridge/CleanupOutcome.h"
#include "bridge/JSBridge.h"
#include "cleaning/folder_size.h"
#include "platform/values/text.h"
#include "platform/values/units.h"

namespace velto {
namespace {

constexpr const char* cleanupKind = "wind";

/// Adds the sizes of the folders that the page's lists say nothing about: the trash itself would
/// only see the folders' own few bytes.
void measureFolders(const std::vector<std::string>& paths, const Platform& platform,
                    VeltoTrashService::KnownSizes& sizes) {
    std::vector<std::string> folders;
    for (const std::string& path : paths) {
        if (sizes.contains(path)) continue;
        const auto attributes = platform.files->attributes(path);
        if (attributes && attributes->kind == FileKind::folder) folders.push_back(path);
    }
    const auto measured = folderSizes(*platform.directories, folders);
    for (std::size_t index = 0; index < folders.size(); ++index) {
        if (measured[index]) sizes[folders[index]] = gigabytes(*measured[index]);
    }
}

}  // namespace

void JSBridge::onDeleteFiles(const Payload& payload) {
    const auto paths = payload::pathsMember(payload, "paths");
    const bool hasKind = payload::member(payload, "kind") != nullptr;
    const auto kind = hasKind ? payload::stringMember(payload, "kind") : cleanupKind;
    if (paths && kind) moveToTrash(*paths, *kind);
}

void JSBridge::onCleanPaths(const Payload& payload) {
    if (const auto paths = payload::pathsMember(payload, "paths")) moveToTrash(*paths, cleanupKind);
}

void JSBridge::moveToTrash(const std::vector<std::string>& paths, const std::string& kind) {
    const Platform& platform = platform_;
    runCleanup(
        [&platform, paths, kind, sizes = knownSizes(paths)](CleanupServices& services,
                                                            CleanupOutcome& outcome) {
            // Before measuring: what may not be moved is not walked either.
            for (const std::string& path : paths)
                services.trash.validate(path);
            auto allSizes = sizes;
            measureFolders(paths, platform, allSizes);
            const Operation operation = services.trash.moveToTrash(paths, kind, allSizes);
            services.history.record(operation);
            outcome.gb = operation.gb;
        },
        [](JSBridge& bridge, const CleanupOutcome& outcome) {
            if (outcome.failure) {
                bridge.toastFailure("No se pudo eliminar", "Couldn't remove", outcome);
                return;
            }
            const std::string gb = tenths(outcome.gb);
            const auto days = bridge.settings_.retention();
            bridge.toast(
                "Eliminado", "Removed",
                bridge.language_.text(
                    fmt::format("{} GB en la Papelera de Velto. Se conservan {} días.", gb, days),
                    fmt::format("{} GB in Velto Trash. Kept for {} days.", gb, days)));
        });
}

/// What the analysis and the cleaning rules have measured.
VeltoTrashService::KnownSizes JSBridge::knownSizes(const std::vector<std::string>& paths) const {
    VeltoTrashService::KnownSizes sizes;
    for (const std::string& path : paths) {
        if (const auto size = lists_.sizeOf(path)) {
            sizes[path] = *size;
        } else if (const auto found = cleanableSizes_.find(path); found != cleanableSizes_.end()) {
            sizes[path] = found->second;
        }
    }
    return sizes;
}

void JSBridge::onUndoLast(const Payload&) {
    runCleanup(
        [](CleanupServices& services, CleanupOutcome& outcome) {
            const auto& operations = services.trash.operations();
            outcome.hasActed = !operations.empty();
            if (!outcome.hasActed) return;
            const std::string id = operations.front().id;
            services.trash.undoOperation(id);
            services.history.remove(id);
        },
        [](JSBridge& bridge, const CleanupOutcome& outcome) {
            if (!outcome.failure) return;
            bridge.toastFailure("No se pudo deshacer", "Couldn't undo", outcome);
        });
}

void JSBridge::onRestoreItem(const Payload& payload) {
    const auto id = payload::string(payload);
    if (!id) return;
    runCleanup(
        [id = *id](CleanupServices& services, CleanupOutcome&) { services.trash.restore(id); },
        [](JSBridge& bridge, const CleanupOutcome& outcome) {
            if (!outcome.failure) return;
            bridge.toastFailure("No se pudo restaurar", "Couldn't restore", outcome);
        });
}

/// For an item whose own place is blocked, or that is wanted elsewhere.
void JSBridge::onRestoreItemTo(const Payload& payload) {
    const auto id = payload::stringMember(payload, "id");
    if (!id || !trash_) return;
    const auto item = std::ranges::find(*trash_, *id, &TrashItem::id);
    if (item == trash_->end()) return;
    const std::string name = singleLine(item->name);
    shell_.chooseFolder(
        {.title = std::string(language_.text(fmt::format("Restaurar «{}» en otra carpeta", name),
                                             fmt::format("Restore “{}” to another folder", name))),
         .accept = std::string(language_.text("Restaurar aquí", "Restore here")),
         .decline = std::string(language_.text("Cancelar", "Cancel")),
         .startAt = platform_.layout.home},
        [weak = weak_from_this(), id = *id, name](const std::optional<std::string>& folder) {
            const auto bridge = weak.lock();
            if (bridge && folder) bridge->restoreTo(id, name, *folder);
        });
}

void JSBridge::restoreTo(const std::string& itemID, const std::string& name,
                         const std::string& folder) {
    runCleanup(
        [itemID, folder](CleanupServices& services, CleanupOutcome&) {
            services.trash.restoreTo(itemID, folder);
        },
        [name, folder](JSBridge& bridge, const CleanupOutcome& outcome) {
            // Titles of their own: the page takes the others for answers to what it has asked.
            if (outcome.failure) {
                bridge.toastFailure("No se pudo restaurar ahí", "Couldn't restore there", outcome);
                return;
            }
            const std::string place = shownPath(folder, bridge.platform_.layout.home);
            bridge.toast("Restaurado", "Restored",
                         bridge.language_.text(fmt::format("«{}» está ahora en {}.", name, place),
                                               fmt::format("“{}” is in {} now.", name, place)));
        });
}

void JSBridge::onPurgeItem(const Payload& payload) {
    const auto id = payload::string(payload);
    if (!id) return;
    runCleanup([id = *id](CleanupServices& services,
                          CleanupOutcome&) { services.trash.deletePermanently(id); },
               [](JSBridge& bridge, const CleanupOutcome& outcome) {
                   if (outcome.failure) {
                       bridge.toastFailure("No se pudo eliminar", "Couldn't delete", outcome);
                   } else {
                       bridge.toast("Eliminado", "Deleted",
                                    bridge.language_.text("Eliminado definitivamente.",
                                                          "Deleted permanently."));
                   }
               });
}

void JSBridge::onPurgeTrash(const Payload&) {
    runCleanup([](CleanupServices& services, CleanupOutcome&) { services.trash.emptyTrash(); },
               [](JSBridge& bridge, const CleanupOutcome& outcome) {
                   if (outcome.failure) {
                       bridge.toastFailure("No se pudo vaciar", "Couldn't empty Trash", outcome);
                   } else {
                       bridge.toast("Papelera vaciada", "Trash emptied",
                                    bridge.language_.text("Elementos eliminados definitivamente.",
                                                          "Items deleted permanently."));
                   }
               });
}

/// In its turn among the work on the trash, which writes the history too.
void JSBridge::onClearHistory(const Payload&) {
    runCleanup(
        [](CleanupServices& services, CleanupOutcome& outcome) {
            outcome.hasActed = !services.history.entries().empty();
            services.history.clear();
        },
        nullptr);
}

}  // namespace velto
