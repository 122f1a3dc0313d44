#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "bridge/CleanupQueue.h"
#include "platform/Platform.h"

/// What several intents do with the trash. For items of the cleanup queue.
namespace velto {

/// Adds the sizes of the folders that the page's lists say nothing about: the trash itself would
/// only see the folders' own few bytes.
void measureFolders(const std::vector<std::string>& paths, const Platform& platform,
                    VeltoTrashService::KnownSizes& sizes);

/// Throws RefusedSelection for what the trash would not take. One refused path stops the whole
/// selection; which ones they are is found out at once.
void requireAdmitted(VeltoTrashService& trash, const std::vector<std::string>& paths);

/// Moves the paths in as one operation. Throws as the trash does, a refusal with what it is about.
Operation moveSelection(VeltoTrashService& trash, const std::vector<std::string>& paths,
                        const std::string& kind, const VeltoTrashService::KnownSizes& sizes);

/// Does something with an item; a refusal names it.
void withItem(VeltoTrashService& trash, const std::string& id, const std::function<void()>& action);

/// The task bar shows how much of a work on several things is done.
void showDone(const CleanupServices& services, std::size_t done, std::size_t of);

/// Deletes items for good in their order, up to the first that fails, which is thrown. An undo of
/// the rest does not make them unhappen, so the history learns of them. The task bar shows how far
/// it is.
void deleteForGood(CleanupServices& services, const std::vector<std::string>& ids);

}  // namespace velto
