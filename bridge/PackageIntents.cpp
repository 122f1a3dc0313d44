#include "bridge/PackageIntents.h"

#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "bridge/app_events.h"
#include "platform/values/text.h"
#include "uninstall/PackageRemoval.h"
#include "uninstall/unused_runtimes.h"

namespace velto {
namespace {

void logFailure(const Platform& platform, const std::string& path, const std::exception& error) {
    platform.log->line("Velto ▶ desinstalador: el sistema no ha quitado " + singleLine(path) +
                       ": " + singleLine(error.what()));
}

/// What an application goes with; nothing known of it reads as no package.
std::string planScript(const Platform& platform, const std::string& path) {
    try {
        return events::appPackage(path, PackageRemoval(platform).plan(path));
    } catch (const PackageError& error) {
        logFailure(platform, path, error);
        return events::appPackage(path, std::nullopt);
    }
}

/// Removes the package, then quits what of it still runs: who refuses keeps the application as it
/// was.
std::string removalScript(const Platform& platform, AppsWork& work, const std::string& path,
                          const std::vector<std::string>& others) {
    const auto entry = work.apps.readApp(path);
    try {
        PackageRemoval(platform).remove(path, others);
    } catch (const PackageError& error) {
        logFailure(platform, path, error);
        return events::packageRemoval(path, error.reason(), error.what());
    }
    if (entry) work.remover.quitApp(*entry);
    return events::packageRemoval(path, std::nullopt, {});
}

}  // namespace

void PackageIntents::onAppPackage(const Payload& payload) {
    const auto path = payload::pathMember(payload, "path");
    if (!path) return;
    const Platform& platform = context_.platform;
    platform.dispatcher->global(
        QualityOfService::userInitiated, [&platform, path = *path, weak = weak_from_this()] {
            if (weak.expired()) return;
            platform.dispatcher->main([weak, script = planScript(platform, path)] {
                if (const auto self = weak.lock()) self->context_.link.evaluate(script);
            });
        });
}

void PackageIntents::onRemovePackage(const Payload& payload) {
    const auto path = payload::pathMember(payload, "path");
    const auto others = payload::stringsMember(payload, "others");
    if (!path || !others) return;
    removeAlone([&platform = context_.platform, work = context_.work, path = *path,
                 others = *others] { return removalScript(platform, *work, path, others); });
}

void PackageIntents::onRemoveUnusedRuntimes(const Payload& payload) {
    const auto ofAllUsers = payload::boolMember(payload, "ofAllUsers");
    if (!ofAllUsers) return;
    removeAlone([&platform = context_.platform, ofAllUsers = *ofAllUsers] {
        try {
            removeUnusedRuntimes(*platform.tools, ofAllUsers);
            return events::unusedRuntimes(std::nullopt, {});
        } catch (const PackageError& error) {
            logFailure(platform, "flatpak --unused", error);
            return events::unusedRuntimes(error.reason(), error.what());
        }
    });
}

void PackageIntents::removeAlone(std::function<std::string()> work) {
    const auto pass = context_.uninstalls.enter();
    if (!pass) {
        context_.link.toast(
            "Ya hay una desinstalación en marcha", "An uninstall is already running",
            context_.language.text("Espera a que termine.", "Wait for it to finish."));
        return;
    }
    Dispatcher& dispatcher = *context_.platform.dispatcher;
    // Taken away when the work is dropped with what it holds.
    auto shown = context_.progress == nullptr ? nullptr : context_.progress->begin();
    dispatcher.change([&dispatcher, work = std::move(work), pass, shown = std::move(shown),
                       weak = weak_from_this()] {
        if (weak.expired()) return;
        const std::string script = work();
        // Before the page knows of the end, which is when it asks for what was left behind.
        pass->end();
        dispatcher.main([weak, script] {
            if (const auto self = weak.lock()) self->context_.link.evaluate(script);
        });
    });
}

}  // namespace velto
