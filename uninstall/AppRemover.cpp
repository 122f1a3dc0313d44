#include "uninstall/AppRemover.h"

#include <algorithm>
#include <cerrno>
#include <unordered_set>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cleaning/TrashRecords.h"
#include "platform/values/PropertyList.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"
#include "platform/values/units.h"
#include "uninstall/desktop_leftovers.h"
#include "uninstall/figures.h"
#include "uninstall/kept_places.h"
#include "uninstall/quit_processes.h"
#include "uninstall/tool_names.h"

namespace velto {
namespace {

constexpr const char* launchctl = "/bin/launchctl";
constexpr const char* systemctl = "/usr/bin/systemctl";
constexpr const char* flatpak = "/usr/bin/flatpak";

/// Each path once, the application itself first: what fails later has then lost its use already.
std::vector<std::string> inOrderOfRemoval(const std::vector<std::string>& paths,
                                          const std::string& bundlePath) {
    std::vector<std::string> ordered;
    std::unordered_set<std::string> seen;
    for (const std::string& path : paths) {
        const std::string standard = standardizedPath(path);
        if (seen.insert(standard.empty() ? path : standard).second) ordered.push_back(path);
    }
    std::stable_partition(ordered.begin(), ordered.end(), [&](const std::string& path) {
        return standardizedPath(path) == standardizedPath(bundlePath);
    });
    return ordered;
}

/// The hidden folders of a Linux home that are named like the application.
Claims claimsOf(const AppEntry& entry, const HomeLayout& home) {
    Claims claims;
    if (home.kind != HomeLayout::Kind::freedesktop) return claims;
    for (Leftovers::Candidate& folder : Leftovers::dotFolders(entry, home))
        claims.push_back(std::move(folder.path));
    return claims;
}

/// True for what stays whichever application is meant, and for the profile of another browser, also
/// where a link leads into one.
bool isKeptFor(const std::string& path, const AppEntry& entry,
               const AppRemover::ShownTargets& shown, const HomeLayout& home) {
    if (isKept(standardizedPath(path), home, entry.bid)) return true;
    const auto target = shown.find(path);
    return target != shown.end() && isProfile(target->second, home) &&
           isKept(target->second, home, entry.bid);
}

}  // namespace

AppRemover::Result AppRemover::uninstall(const AppEntry& entry,
                                         const std::vector<std::string>& paths,
                                         const Progress& progress, const ShownTargets& shown) {
    const auto report = [&](std::string_view stage, double percent,
                            const std::optional<Item>& item = std::nullopt) {
        if (progress) progress(stage, item, percent);
    };
    Result result{.name = entry.name};
    const HomeLayout& layout = platform_.layout;
    const Claims claims = claimsOf(entry, layout);
    std::vector<std::string> chosen;
    for (const std::string& path : inOrderOfRemoval(paths, entry.path)) {
        const bool isKeptHere = isKeptFor(path, entry, shown, layout);
        if (!isKeptHere && isSafeToRemove(path, entry.path, layout, claims)) {
            chosen.push_back(path);
        } else {
            fail(path,
                 isKeptHere || isProtectedPlace(path, layout, claims) ? RemovalReason::protected_
                                                                      : RemovalReason::admin,
                 result);
        }
    }

    report("stop", 3);
    result.closed = quitApp(entry);
    unloadAgents(chosen);
    report("stop", 16);
    report("stop", 20);

    removal_.sweep();
    report("files", 40);
    std::int64_t bytes = 0;
    const double count = static_cast<double>(chosen.size());
    for (std::size_t index = 0; index < chosen.size(); ++index) {
        const Item item{std::string(lastPathComponent(chosen[index])), chosen[index]};
        report("files", 40 + 48 * (static_cast<double>(index) / count), item);
        removeOne(chosen[index], entry, {.shown = shown, .claims = claims}, result, bytes);
    }
    report("clean", 92);
    result.freed = roundedToThousandth(gigabytes(bytes));
    report("done", 100);
    return result;
}

// Quitting

int AppRemover::quitApp(const AppEntry& entry) {
    const int count = quitProcesses(platform_, apps_.processesOf(entry));
    if (count > 0) {
        platform_.log->line(fmt::format("Velto ▶ desinstalador: {} procesos de {} cerrados", count,
                                        singleLine(entry.name)));
    }
    return count;
}

// Agents

void AppRemover::unloadAgents(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        if (removal_.isOwn(path)) continue;  // it stays, so it stays loaded
        if (platform_.layout.kind == HomeLayout::Kind::freedesktop) {
            unloadUserUnit(path);
        } else if (path.find("/LaunchAgents/") != std::string::npos ||
                   path.find("/LaunchDaemons/") != std::string::npos) {
            unloadLaunchdAgent(path);
        }
    }
}

void AppRemover::unloadLaunchdAgent(const std::string& path) {
    constexpr ReadLimit limit = anyFile(1 << 20);
    std::optional<PropertyList> list;
    try {
        list = readPropertyList(platform_.files->read(path, limit));
    } catch (const FileError&) {
        return;  // gone, or not ours to read: then it cannot be named to the system either
    }
    const std::string* const label = list ? list->text("Label") : nullptr;
    if (label == nullptr || !isServiceLabel(*label)) return;
    const bool isDaemon = path.find("/LaunchDaemons/") != std::string::npos;
    const std::string domain =
        isDaemon ? "system/" : fmt::format("gui/{}/", platform_.userIdentifier);
    platform_.tools->run(launchctl, {"bootout", domain + *label});
}

void AppRemover::unloadUserUnit(const std::string& path) {
    const std::string standard = standardizedPath(path);
    const std::string name(lastPathComponent(standard));
    if (standard != platform_.layout.agentsFolder + "/" + name) return;
    if (!name.ends_with(".service") && !name.ends_with(".timer")) return;
    if (!isUnitName(name)) return;  // systemd knows no such unit
    platform_.tools->run(systemctl, {"--user", "disable", "--now", "--", name});
}

// Deleting

/// A link in its place is no installation: it goes as any other link.
bool AppRemover::isUserFlatpak(const std::string& path, const AppEntry& entry) const {
    if (platform_.layout.kind != HomeLayout::Kind::freedesktop || !isFlatpakIdentifier(entry.bid) ||
        path != entry.path || path != platform_.layout.userFlatpaks + "/" + entry.bid) {
        return false;
    }
    const auto attributes = platform_.files->attributes(path);
    return !attributes || attributes->kind != FileKind::symbolicLink;
}

void AppRemover::removeOne(const std::string& path, const AppEntry& entry, const Terms& terms,
                           Result& result, std::int64_t& bytes) {
    const auto target = terms.shown.find(path);
    std::string place = path;
    RemovalReason reason = RemovalReason::other;
    std::string why;
    try {
        bytes += isUserFlatpak(path, entry)
                     ? removeFlatpak(entry)
                     : removal_.remove(path,
                                       target == terms.shown.end() ? std::nullopt
                                                                   : std::optional(target->second),
                                       terms.claims);
        ++result.removed;
        result.gone.push_back(path);
        return;
    } catch (const UnfinishedRemoval& error) {
        place = error.rest();
        reason = classify(removalError(error), path, platform_.layout);
        why = error.what();
    } catch (const std::exception& error) {
        reason = classify(removalError(error), path, platform_.layout);
        why = error.what();
    }
    result.failures.push_back(
        {std::string(lastPathComponent(path)), place, std::string(code(reason))});
    platform_.log->line("Velto ▶ desinstalador: no se pudo quitar " + singleLine(path) + ": " +
                        singleLine(why));
}

/// Flatpak keeps records of its own of what is installed, so it does the removing.
std::int64_t AppRemover::removeFlatpak(const AppEntry& entry) {
    if (!platform_.files->exists(entry.path)) throw TrashError(TrashError::Reason::notFound);
    const std::int64_t bytes = apps_.sizeOf(entry.path);
    platform_.tools->run(flatpak, {"kill", entry.bid});  // fails when it does not run
    const ToolResult ended = platform_.tools->run(
        flatpak, {"uninstall", "--user", "--noninteractive", "--assumeyes", entry.bid});
    if (!ended.started || ended.exitStatus != 0) throw FileError("uninstall", entry.path, EIO);
    return bytes;
}

void AppRemover::fail(const std::string& path, RemovalReason reason, Result& result) const {
    result.failures.push_back(
        {std::string(lastPathComponent(path)), path, std::string(code(reason))});
    platform_.log->line("Velto ▶ desinstalador: no se pudo quitar " + singleLine(path) +
                        ": fuera de lo permitido");
}

nlohmann::json toJson(const AppRemover::Result& result) {
    nlohmann::json failures = nlohmann::json::array();
    for (const AppRemover::Failure& failure : result.failures) {
        failures.push_back({{"name", pathText(failure.name)},
                            {"path", pathText(failure.path)},
                            {"reason", failure.reason}});
    }
    return {{"name", result.name},
            {"removed", result.removed},
            {"freed", result.freed},
            {"closed", result.closed},
            {"failures", std::move(failures)}};
}

}  // namespace velto
