#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <iterator>

#include <nlohmann/json.hpp>

#include "bridge/AppIntents.h"
#include "bridge/CleanupOutcome.h"
#include "bridge/app_events.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"
#include "platform/values/uuid.h"
#include "uninstall/figures.h"
#include "uninstall/removal_rules.h"

namespace velto {
namespace {

/// What an uninstall has taken away.
struct UninstallRecord {
    std::vector<std::string> gone;  // places at which nothing is any more, see `placesOf`
    bool hasChanged = false;        // at one of them something was when the removal began
    Operation operation;            // as the history shows it; no items, no entry
};

struct Request {
    std::string path;                // of the application
    std::vector<std::string> paths;  // chosen
    nlohmann::json sizes;            // GB by path, as far as the page knows them
};

struct Outcome {
    AppRemover::Result result;
    UninstallRecord record;
};

std::vector<std::string> existing(const FileManager& files, const std::vector<std::string>& paths) {
    std::vector<std::string> found;
    std::ranges::copy_if(paths, std::back_inserter(found),
                         [&](const std::string& path) { return files.exists(path); });
    return found;
}

/// The chosen paths, and where those lead that are links or lie behind one: the analysis lists what
/// is there, and not what a link shows of it.
std::vector<std::string> placesOf(const std::vector<std::string>& chosen,
                                  const AppRemover::ShownTargets& shown) {
    std::vector<std::string> places = chosen;
    for (const std::string& path : chosen) {
        if (const auto target = shown.find(path); target != shown.end()) {
            places.push_back(target->second);
        }
    }
    return places;
}

bool contains(const std::vector<std::string>& paths, const std::string& path) {
    return std::ranges::find(paths, path) != paths.end();
}

std::string nameAt(const std::string& path) {
    std::string name(lastPathComponent(path));
    if (name.ends_with(".app")) name.resize(name.size() - 4);
    return name;
}

/// False for a folder of many applications, or of the system: whatever runs from such a place
/// belongs to others as well and is not quit.
bool canBeOneApplication(const std::string& path, const HomeLayout& home) {
    if (isProtectedPlace(path, home) || !isSafeToRemove(path, "", home)) return false;
    const std::string place = standardizedPath(path);
    const auto holds = [&](const std::string& folder) { return isAtOrBelow(folder, place); };
    return std::ranges::none_of(std::array{home.home, home.systemApplications,
                                           home.userApplications, home.userFlatpaks},
                                holds) &&
           std::ranges::none_of(home.applicationRoots, holds);
}

/// What is known of an application whose bundle may be gone already: its leftovers can still be
/// removed.
AppEntry entryAt(const Platform& platform, const InstalledApps& apps, const std::string& path) {
    if (auto entry = apps.readApp(path)) return *entry;
    AppEntry entry;
    entry.name = nameAt(path);
    if (canBeOneApplication(path, platform.layout)) entry.path = path;
    return entry;
}

/// What a removal has left that an error has cut short for which no single path accounts. How much
/// it has freed is not known.
AppRemover::Result cutShort(const FileManager& files, const Request& request,
                            const std::vector<std::string>& before) {
    AppRemover::Result result{.name = nameAt(request.path)};
    for (const std::string& path : request.paths) {
        const bool isThere = files.exists(path);
        if (!isThere && contains(before, path)) {
            ++result.removed;
            result.gone.push_back(path);
            continue;
        }
        const auto reason = isThere ? RemovalReason::other : RemovalReason::gone;
        result.failures.push_back(
            {std::string(lastPathComponent(path)), path, std::string(code(reason))});
    }
    return result;
}

/// The size that the page knows, in GB; 0 when it does not.
double knownSize(const nlohmann::json& sizes, const std::string& path) {
    const auto found = sizes.is_object() ? sizes.find(pathText(path)) : sizes.end();
    if (found == sizes.end() || !found->is_number()) return 0;
    const double gb = found->get<double>();
    return std::isfinite(gb) && gb > 0 ? roundedToThousandth(gb) : 0;
}

/// The removal as the history shows it.
Operation operationOf(const Platform& platform, const AppRemover::Result& result,
                      const nlohmann::json& sizes) {
    Operation operation{.id = "un" + newUUID(),
                        .ts = platform.clock->now(),
                        .gb = result.freed,
                        .items = {},
                        .kind = "uninstall"};
    for (const std::string& path : result.gone) {
        TrashItem item;
        item.name = lastPathComponent(path);
        item.gb = knownSize(sizes, path);
        operation.items.push_back(std::move(item));
    }
    return operation;
}

Outcome uninstall(const Platform& platform, AppsWork& work, const Request& request,
                  const AppRemover::Progress& progress) {
    const FileManager& files = *platform.files;
    const AppRemover::ShownTargets shown = work.shown.of(request.path);
    const std::vector<std::string> places = placesOf(request.paths, shown);
    const std::vector<std::string> before = existing(files, places);
    Outcome outcome;
    try {
        outcome.result = work.remover.uninstall(entryAt(platform, work.apps, request.path),
                                                request.paths, progress, shown);
    } catch (const std::exception& error) {
        platform.log->line("Velto ▶ desinstalador: interrumpida: " + singleLine(error.what()));
        outcome.result = cutShort(files, request, before);
    }
    const std::vector<std::string> left = existing(files, places);
    for (const std::string& place : places) {
        // A link may be left that leads nowhere.
        const bool isRemoved = contains(outcome.result.gone, place);
        if (isRemoved || !contains(left, place)) outcome.record.gone.push_back(place);
    }
    outcome.record.hasChanged = before.size() != left.size();
    outcome.record.operation = operationOf(platform, outcome.result, request.sizes);
    return outcome;
}

/// The history gets its entry whether the window is open or not: what was deleted for good is
/// written down. No view goes on offering what is gone, nor does one of a window opened meanwhile.
void recordUninstall(const Platform& platform, CleanupQueue& cleanups,
                     const std::function<void(const CleanupOutcome&)>& tell,
                     const UninstallRecord& record) {
    if (record.operation.items.empty() && record.gone.empty()) return;
    cleanups.run([&platform, tell, record](CleanupServices& services) {
        const auto outcome =
            carryOut(platform, services, [&](CleanupServices& theirs, CleanupOutcome& cleanup) {
                if (!record.operation.items.empty()) theirs.history.record(record.operation);
                cleanup.hasActed = record.hasChanged;
                cleanup.gone = record.gone;
            });
        platform.dispatcher->main([tell, outcome] { tell(*outcome); });
    });
}

}  // namespace

void AppIntents::onUninstall(const Payload& payload) {
    const auto path = payload::pathMember(payload, "path");
    const auto paths = payload::pathListMember(payload, "paths");
    if (!path || !paths) return;
    const auto pass = context_.state.uninstallRunning ? nullptr : context_.uninstalls.enter();
    if (!pass) {
        context_.link.toast(
            "Ya hay una desinstalación en marcha", "An uninstall is already running",
            context_.language.text("Espera a que termine.", "Wait for it to finish."));
        return;
    }
    context_.state.uninstallRunning = true;
    const nlohmann::json* const sizes = payload::member(payload, "sizes");
    const Request request{*path, *paths, sizes == nullptr ? nlohmann::json() : *sizes};
    const Platform& platform = context_.platform;
    auto shown = context_.progress == nullptr ? nullptr : context_.progress->begin(0.0);
    platform.dispatcher->change([&platform, work = context_.work, request, pass, shown,
                                 cleanups = context_.cleanups, tell = context_.tell,
                                 weak = weak_from_this()]() mutable {
        if (weak.expired()) return;
        Dispatcher& dispatcher = *platform.dispatcher;
        const auto progress = [&](std::string_view stage,
                                  const std::optional<AppRemover::Item>& item, double percent) {
            if (shown) shown->report(percent / 100);
            const auto detail = item ? std::optional<std::string>(item->name) : std::nullopt;
            dispatcher.main([weak, script = events::uninstallProgress(stage, percent, detail)] {
                if (const auto self = weak.lock()) self->context_.link.evaluate(script);
            });
        };
        const Outcome outcome = uninstall(platform, *work, request, progress);
        // Before the page knows of the end, which is when it may ask for the next one.
        pass->end();
        shown.reset();
        dispatcher.main([weak, script = events::uninstallResult(toJson(outcome.result))] {
            const auto self = weak.lock();
            if (!self) return;
            self->context_.link.evaluate(script);
            self->context_.state.uninstallRunning = false;
        });
        recordUninstall(platform, cleanups, tell, outcome.record);
    });
}

}  // namespace velto
