#include "bridge/trash_work.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "bridge/Refusal.h"
#include "cleaning/folder_size.h"
#include "platform/values/units.h"

namespace velto {

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

void requireAdmitted(VeltoTrashService& trash, const std::vector<std::string>& paths) {
    Refusal refusal;
    for (const std::string& path : paths) {
        try {
            trash.validate(path);
            refusal.rest.push_back(path);
        } catch (const TrashError& error) {
            refusal.items.push_back({.path = path, .reason = error.reason()});
        }
    }
    if (!refusal.items.empty()) throw RefusedSelection(std::move(refusal));
}

Operation moveSelection(VeltoTrashService& trash, const std::vector<std::string>& paths,
                        const std::string& kind, const VeltoTrashService::KnownSizes& sizes) {
    try {
        return trash.moveToTrash(paths, kind, sizes);
    } catch (const TrashError&) {
        requireAdmitted(trash, paths);  // something has changed since the first look
        throw;
    }
}

void withItem(VeltoTrashService& trash, const std::string& id,
              const std::function<void()>& action) {
    const auto& items = trash.items();
    const auto found = std::ranges::find(items, id, &TrashItem::id);
    const std::string path = found == items.end() ? std::string() : found->originalPath;
    try {
        action();
    } catch (const TrashError& error) {
        throw RefusedSelection({.items = {{.path = path, .reason = error.reason()}}, .rest = {}});
    }
}

void showDone(const CleanupServices& services, std::size_t done, std::size_t of) {
    // Of a single thing it says nothing.
    if (services.shown == nullptr || of < 2) return;
    services.shown->report(static_cast<double>(done) / static_cast<double>(of));
}

void deleteForGood(CleanupServices& services, const std::vector<std::string>& ids) {
    std::size_t done = 0;
    for (const std::string& id : ids) {
        const auto& items = services.trash.items();
        const auto found = std::ranges::find(items, id, &TrashItem::id);
        const auto item = found == items.end() ? std::nullopt : std::optional(*found);
        withItem(services.trash, id, [&] { services.trash.deletePermanently(id); });
        if (item) services.history.noteDeleted(*item);
        showDone(services, ++done, ids.size());
    }
}

}  // namespace velto
