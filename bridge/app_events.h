#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

#include "uninstall/PackageRemoval.h"

/// The scripts of the uninstaller's events. Pure, like those of events.h.
namespace velto::events {

/// The applications' records, each with `icon` when one could be made.
std::string apps(const nlohmann::json& list);

/// GB with three decimals, by the application's path.
std::string appSizes(const nlohmann::json& sizes);

std::string appAnalysis(const nlohmann::json& analysis);

/// What among an application's leftovers is a link or lies behind one: records of `path`, `target`
/// and `kept` (only the link goes). Goes before the analysis that lists them.
std::string leftoverLinks(const std::string& application, const nlohmann::json& links);

/// Records as `LeftBehind` has them.
std::string leftBehind(const nlohmann::json& items);

/// Whether an application itself can be removed from here: `stays` (why not, empty when it can) and
/// `folder` (what stays of one that goes as a single file). Goes before its analysis.
std::string appRemoval(const std::string& application, const nlohmann::json& removal);

/// `percent` is written with one decimal. In the detail, which may be any file's name, backslashes
/// and quotes are escaped, and what would break the line becomes a space.
std::string uninstallProgress(std::string_view stage, double percent,
                              const std::optional<std::string>& detail);

/// How an application goes that the system has installed: a record of `keeper` ("distribution",
/// "flatpak", "snap"), `name`, `others`, `kept` and `command`; null for one that is no package.
std::string appPackage(const std::string& application, const std::optional<PackagePlan>& plan);

/// The end of a package's removal: a record of `done`, `reason` ("" when done; else "unavailable",
/// "refused", "missing", "busy", "changed", "kept" or "failed") and `detail`, the system's words.
std::string packageRemoval(const std::string& application,
                           const std::optional<PackageError::Reason>& failure,
                           const std::string& detail);

/// The end of removing runtimes that nothing uses; the record of `packageRemoval`.
std::string unusedRuntimes(const std::optional<PackageError::Reason>& failure,
                           const std::string& detail);

std::string uninstallResult(const nlohmann::json& result);

}  // namespace velto::events
