#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "analysis/DiskState.h"
#include "cleaning/CleaningRules.h"
#include "cleaning/TrashRecords.h"
#include "cleaning/known_caches.h"

namespace velto {
struct Refusal;
struct RestoreBlock;
}  // namespace velto

/// The exact script of each event that the page receives. Pure: no bridge, no web view.
namespace velto::events {

/// The guarded call that every event is: a page without that callback ignores it. `arguments` are
/// script literals.
std::string call(std::string_view callback, std::string_view arguments);

/// JSON as a script literal. Bytes that are not UTF-8 become U+FFFD.
std::string literal(const nlohmann::json& json);

std::string scanStarted();
std::string scanProgress(std::int64_t files, double gb);  // GB with one decimal
/// The comparison of files of equal size: files looked into, and GB read of them.
std::string analysisPhase(std::string_view phase, std::int64_t files, double gb);
std::string scanFinished();
/// Comes before `scanFailed`: the user has stopped it.
std::string analysisStopped();
std::string scanFailed();

/// The state's JSON and its stamp (seconds since 1970); nothing when the state cannot be encoded.
std::optional<std::string> setState(const DiskState& state, double stamp);

std::string permissions(bool fullDiskAccess);

/// Only double quotes are escaped, on purpose: callers hand over single lines without backslashes
/// (see `singleLine`).
std::string toast(std::string_view title, std::string_view detail);

std::string exclusions(const std::vector<std::string>& paths);
/// See MaintenanceStatus.h for the keys.
std::string maintenance(const nlohmann::json& status);

/// The trash's items, oldest first; the page knows an item's place as `path`.
std::string trashState(const std::vector<TrashItem>& items);
/// What waits because a move of it was cut off: `path` is its place outside the trash, `folder`
/// what it waits for, `way` "in" or "out" of the trash, `reason` "absent", "refused" or
/// "unsettled".
std::string trashWaiting(const std::vector<WaitingItem>& items);
/// What the trash has refused, and what it would take without that. `home` tells a link inside it
/// from a place outside.
std::string refused(const Refusal& refusal, const std::string& home);

/// An item could not be restored: `path` is what stands on the way to its place.
std::string restoreBlocked(const RestoreBlock& block);
std::string trashEmptying(std::size_t done, std::size_t of);  // items
std::string trashChanged(double gb);                          // GB in the trash, with one decimal
std::string cleanables(const std::vector<Candidate>& candidates);
/// By path: {"certain", "reason"}, the reasons as `word` gives them.
/// Whole days by path, of what has changed inside since.
std::string cleanableAges(const CleaningRules::Ages& ages);
std::string cleanableFacts(const FactsByPath& facts);

/// `direction` is "to" or "from" the cloud folder.
std::string cloudMove(const std::vector<std::string>& moved, const std::vector<std::string>& failed,
                      std::string_view direction);

/// One sample of the machine.
std::string system(const nlohmann::ordered_json& sample);

/// Shows a view of the page. The name goes in as it is.
std::string goView(std::string_view name);

/// The program ends as soon as what runs is done: "uninstall" or "cleanup".
std::string quitting(std::string_view running);

/// Lets the page's own console show a received intent.
std::string intentEcho(std::string_view name);

/// The script that runs before the page's own and holds the last analysis; nothing when the state
/// cannot be encoded.
std::optional<std::string> bootstrap(const DiskState& state, double stamp);

}  // namespace velto::events
