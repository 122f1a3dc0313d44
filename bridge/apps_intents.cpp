#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "bridge/AppsWork.h"
#include "bridge/CleanupOutcome.h"
#include "bridge/JSBridge.h"
#include "bridge/app_events.h"
#include "bridge/events.h"
#include "platform/parallel.h"
#include "platform/text.h"
#include "platform/units.h"
#include "platform/uuid.h"
#include "uninstall/Leftovers.h"
#include "uninstall/figures.h"

namespace velto {
namespace {

constexpr int iconSize = 32;  // pixels

/// The records of the list, icons rendered on all processors.
nlohmann::json recordsOf(const InstalledApps& apps, const std::vector<AppEntry>& entries) {
    std::vector<std::optional<std::string>> icons(entries.size());
    forEachInParallel(entries.size(), 0, [&](std::size_t index, std::size_t) {
        icons[index] = apps.iconDataURL(entries[index].path, iconSize);
    });
    nlohmann::json records = nlohmann::json::array();
    for (std::size_t index = 0; index < entries.size(); ++index) {
        records.push_back(toJson(entries[index]));
        if (icons[index]) records.back()["icon"] = *icons[index];
    }
    return records;
}

nlohmann::json sizesOf(const InstalledApps& apps, const std::vector<std::string>& paths) {
    const auto bytes = apps.sizesOf(paths);
    nlohmann::json sizes = nlohmann::json::object();
    for (std::size_t index = 0; index < paths.size(); ++index) {
        sizes[validUtf8(paths[index])] = roundedToThousandth(gigabytes(bytes[index]));
    }
    return sizes;
}

/// What is known of an application whose bundle may be gone already: its leftovers can still be
/// removed.
AppEntry entryAt(const InstalledApps& apps, const std::string& path) {
    if (auto entry = apps.readApp(path)) return *entry;
    AppEntry entry;
    entry.name = lastPathComponent(path);
    if (entry.name.ends_with(".app")) entry.name.resize(entry.name.size() - 4);
    entry.path = path;
    return entry;
}

/// The size that the page knows, in GB; 0 when it does not.
double knownSize(const nlohmann::json& sizes, const std::string& path) {
    const auto found = sizes.is_object() ? sizes.find(path) : sizes.end();
    if (found == sizes.end() || !found->is_number()) return 0;
    const double gb = found->get<double>();
    return std::isfinite(gb) && gb > 0 ? roundedToThousandth(gb) : 0;
}

}  // namespace

/// What an uninstall has taken away.
struct UninstallRecord {
    std::vector<std::string> gone;  // chosen paths at which nothing is any more
    Operation operation;            // as the history shows it
};

namespace {

UninstallRecord recordOf(const Platform& platform, const AppRemover::Result& result,
                         const std::vector<std::string>& paths, const nlohmann::json& sizes) {
    UninstallRecord record{.gone = {},
                           .operation = {.id = "un" + newUUID(),
                                         .ts = platform.clock->now(),
                                         .gb = result.freed,
                                         .items = {},
                                         .kind = "uninstall"}};
    for (const std::string& path : paths) {
        if (!platform.files->exists(path)) record.gone.push_back(path);
    }
    for (const std::string& path : result.gone) {
        TrashItem item;
        item.name = validUtf8(lastPathComponent(path));
        item.gb = knownSize(sizes, path);
        record.operation.items.push_back(std::move(item));
    }
    return record;
}

}  // namespace

void JSBridge::onAppsList(const Payload&) {
    Dispatcher& dispatcher = *platform_.dispatcher;
    dispatcher.global(
        QualityOfService::userInitiated, [&dispatcher, work = apps_, weak = weak_from_this()] {
            if (weak.expired()) return;
            const auto entries = work->apps.listApps();
            std::vector<std::string> paths;
            paths.reserve(entries.size());
            for (const AppEntry& entry : entries)
                paths.push_back(entry.path);
            const std::string script = events::apps(recordsOf(work->apps, entries));
            dispatcher.main([weak, script, paths] {
                const auto bridge = weak.lock();
                if (!bridge) return;
                bridge->evaluate(script);
                bridge->log(
                    fmt::format("Velto ▶ desinstalador: {} aplicaciones instaladas", paths.size()));
                bridge->measureApps(paths);
            });
        });
}

void JSBridge::measureApps(const std::vector<std::string>& paths) {
    if (appsMeasuring || paths.empty()) return;
    appsMeasuring = true;
    Dispatcher& dispatcher = *platform_.dispatcher;
    dispatcher.global(
        QualityOfService::utility, [&dispatcher, work = apps_, paths, weak = weak_from_this()] {
            const std::string script = events::appSizes(sizesOf(work->apps, paths));
            dispatcher.main([weak, script, count = paths.size()] {
                const auto bridge = weak.lock();
                if (!bridge) return;
                bridge->log(fmt::format("Velto ▶ desinstalador: tamaños medidos ({} apps)", count));
                bridge->evaluate(script);
                bridge->appsMeasuring = false;
            });
        });
}

void JSBridge::onAppAnalysis(const Payload& payload) {
    const auto path = payload::stringMember(payload, "path");
    if (!path) return;
    Dispatcher& dispatcher = *platform_.dispatcher;
    dispatcher.global(
        QualityOfService::userInitiated,
        [&dispatcher, &platform = platform_, work = apps_, path = *path, weak = weak_from_this()] {
            if (weak.expired()) return;
            auto entry = work->apps.readApp(path);
            std::optional<std::string> script;
            if (entry) {
                entry->team = work->apps.teamID(path).value_or("");
                entry->running = work->apps.isRunning(*entry);
                script = events::appAnalysis(Leftovers::analyze(platform, work->apps, *entry));
            }
            dispatcher.main([weak, script, path] {
                const auto bridge = weak.lock();
                if (!bridge) return;
                if (script) {
                    bridge->evaluate(*script);
                } else {
                    bridge->toast("No se pudo analizar", "Couldn't analyze", path);
                }
            });
        });
}

void JSBridge::onUninstall(const Payload& payload) {
    const auto path = payload::stringMember(payload, "path");
    const auto paths = payload::pathsMember(payload, "paths");
    if (!path || !paths) return;
    const nlohmann::json* const known = payload::member(payload, "sizes");
    if (uninstallRunning) {
        toast("Ya hay una desinstalación en marcha", "An uninstall is already running",
              language_.text("Espera a que termine.", "Wait for it to finish."));
        return;
    }
    uninstallRunning = true;
    Dispatcher& dispatcher = *platform_.dispatcher;
    const auto send = [&dispatcher, weak = weak_from_this()](std::string script) {
        dispatcher.main([weak, script = std::move(script)] {
            if (const auto bridge = weak.lock()) bridge->evaluate(script);
        });
    };
    dispatcher.global(
        QualityOfService::userInitiated,
        [&dispatcher, &platform = platform_, work = apps_, path = *path, paths = *paths,
         sizes = known == nullptr ? nlohmann::json() : *known, send, weak = weak_from_this()] {
            if (weak.expired()) return;
            const auto result = work->remover.uninstall(
                entryAt(work->apps, path), paths,
                [&](std::string_view stage, const std::optional<AppRemover::Item>& item,
                    double percent) {
                    const auto detail =
                        item ? std::optional<std::string>(item->name) : std::nullopt;
                    send(events::uninstallProgress(stage, percent, detail));
                });
            const auto record = recordOf(platform, result, paths, sizes);
            dispatcher.main([weak, record, script = events::uninstallResult(toJson(result))] {
                const auto bridge = weak.lock();
                if (!bridge) return;
                bridge->evaluate(script);
                bridge->uninstallRunning = false;
                bridge->recordUninstall(record);
            });
        });
}

/// The history gets one entry, and no view goes on offering what is gone.
void JSBridge::recordUninstall(const UninstallRecord& record) {
    if (record.operation.items.empty()) return;
    runCleanup(
        [record](CleanupServices& services, CleanupOutcome& outcome) {
            services.history.record(record.operation);
            outcome.gone = record.gone;
        },
        nullptr);
}

}  // namespace velto
