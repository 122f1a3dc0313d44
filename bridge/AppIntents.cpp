#include "bridge/AppIntents.h"

#include <optional>
#include <utility>

#include <fmt/format.h>

#include "bridge/app_events.h"
#include "platform/parallel.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"
#include "platform/values/units.h"
#include "uninstall/Leftovers.h"
#include "uninstall/app_removal.h"
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
        sizes[pathText(paths[index])] = roundedToThousandth(gigabytes(bytes[index]));
    }
    return sizes;
}

/// Looks for what one application has left. Whatever is a link, or lies behind one, is told first
/// and remembered: a removal goes by what was shown. So is whether the application itself can go.
/// Nothing when there is no such application.
std::vector<std::string> analysisScripts(const Platform& platform, AppsWork& work,
                                         const std::string& path, bool hasAccess) {
    auto entry = work.apps.readApp(path);
    if (!entry) return {};
    entry->team = work.apps.teamID(path).value_or("");
    entry->running = work.apps.isRunning(*entry);
    const nlohmann::json analysis = Leftovers::analyze(platform, work.apps, *entry, hasAccess);
    AppRemover::ShownTargets shown;
    nlohmann::json links = nlohmann::json::array();
    for (const auto& [item, target] : Leftovers::linkTargets(platform, work.apps, analysis)) {
        links.push_back(
            {{"path", pathText(item)}, {"target", pathText(target.path)}, {"kept", target.isKept}});
        shown[item] = target.path;
    }
    work.shown.remember(path, std::move(shown));
    std::vector<std::string> scripts;
    if (!links.empty()) scripts.push_back(events::leftoverLinks(path, links));
    if (const auto removal = appRemoval(platform, work.apps, *entry)) {
        scripts.push_back(events::appRemoval(
            path, {{"stays", removal->stays}, {"folder", pathText(removal->folder)}}));
    }
    scripts.push_back(events::appAnalysis(analysis));
    return scripts;
}

}  // namespace

AppIntents::AppIntents(Context context) : context_(std::move(context)) {}

void AppIntents::onAppsList(const Payload&) {
    Dispatcher& dispatcher = *context_.platform.dispatcher;
    dispatcher.global(QualityOfService::userInitiated, [&dispatcher, work = context_.work,
                                                        weak = weak_from_this()] {
        if (weak.expired()) return;
        const auto entries = work->apps.listApps();
        std::vector<std::string> paths;
        paths.reserve(entries.size());
        for (const AppEntry& entry : entries)
            paths.push_back(entry.path);
        const std::string script = events::apps(recordsOf(work->apps, entries));
        dispatcher.main([weak, script, paths] {
            const auto self = weak.lock();
            if (!self) return;
            self->context_.link.evaluate(script);
            self->context_.platform.log->line(
                fmt::format("Velto ▶ desinstalador: {} aplicaciones instaladas", paths.size()));
            self->measure(paths);
        });
    });
}

void AppIntents::measure(const std::vector<std::string>& paths) {
    if (context_.state.appsMeasuring || paths.empty()) return;
    context_.state.appsMeasuring = true;
    Dispatcher& dispatcher = *context_.platform.dispatcher;
    dispatcher.global(QualityOfService::utility,
                      [&dispatcher, work = context_.work, paths, weak = weak_from_this()] {
                          if (weak.expired()) return;
                          const std::string script = events::appSizes(sizesOf(work->apps, paths));
                          dispatcher.main([weak, script, count = paths.size()] {
                              const auto self = weak.lock();
                              if (!self) return;
                              self->context_.platform.log->line(fmt::format(
                                  "Velto ▶ desinstalador: tamaños medidos ({} apps)", count));
                              self->context_.link.evaluate(script);
                              self->context_.state.appsMeasuring = false;
                          });
                      });
}

void AppIntents::onAppAnalysis(const Payload& payload) {
    const auto path = payload::pathMember(payload, "path");
    if (!path) return;
    Dispatcher& dispatcher = *context_.platform.dispatcher;
    dispatcher.global(QualityOfService::userInitiated, [&dispatcher, &platform = context_.platform,
                                                        work = context_.work, path = *path,
                                                        hasAccess = context_.state.accessGranted,
                                                        weak = weak_from_this()] {
        if (weak.expired()) return;
        const auto scripts = analysisScripts(platform, *work, path, hasAccess);
        dispatcher.main([weak, scripts, path] {
            const auto self = weak.lock();
            if (!self) return;
            for (const std::string& script : scripts)
                self->context_.link.evaluate(script);
            if (scripts.empty()) {
                const std::string place = shownPath(path, self->context_.platform.layout.home);
                self->context_.link.toast(
                    "No se pudo analizar", "Couldn't analyze",
                    self->context_.language.text(
                        fmt::format("En «{}» no hay ninguna aplicación, o ya no está ahí.", place),
                        fmt::format("There is no application at “{}”, or not any more.", place)));
            }
        });
    });
}

}  // namespace velto
