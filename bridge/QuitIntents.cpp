#include "bridge/QuitIntents.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "bridge/system_events.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using Controls = std::vector<std::unique_ptr<ProcessControl>>;

/// A hold on those of an application's processes that still run.
Controls controlsOf(const QuittableApplication& application, const Platform& platform) {
    Controls controls;
    for (const RunningApplication& running : platform.running->list()) {
        const auto meant =
            std::ranges::find(application.processes, running.process, &ProcessBeginning::process);
        if (meant == application.processes.end()) continue;
        auto control = platform.running->control(running);
        // Looked at once it is held: the number may be another process's by now.
        if (control && platform.processes->startOf(meant->process) == meant->start) {
            controls.push_back(std::move(control));
        }
    }
    return controls;
}

bool haveEnded(const Controls& controls) {
    return std::ranges::all_of(controls, [](const auto& one) { return one->isTerminated(); });
}

/// On a work thread. True when nothing of it runs any more.
bool stopNow(const QuittableApplication& application, bool byForce, const Platform& platform) {
    const Controls controls = controlsOf(application, platform);
    for (const auto& control : controls)
        byForce ? control->forceTerminate() : control->terminate();
    for (int look = 0; look < QuitIntents::looks; ++look) {
        if (haveEnded(controls)) return true;
        platform.sleeper->sleep(QuitIntents::microsecondsBetweenLooks);
    }
    return haveEnded(controls);
}

}  // namespace

QuitIntents::QuitIntents(const Context& context)
    : link_(context.link), platform_(context.platform), language_(context.language) {}

void QuitIntents::know(std::vector<QuittableApplication> applications) {
    known_ = std::move(applications);
}

void QuitIntents::onQuitApplication(const Payload& payload) { stop(payload, false); }

void QuitIntents::onEndApplication(const Payload& payload) { stop(payload, true); }

void QuitIntents::stop(const Payload& payload, bool byForce) {
    const auto number = payload::integerMember(payload, "pid");
    if (!number) return;
    const auto meant = std::ranges::find(known_, *number, &QuittableApplication::pid);
    if (meant == known_.end()) {
        link_.evaluate(events::applicationStopped(*number, false));
        link_.toast("No se pudo cerrar", "Couldn't quit",
                    language_.text("Ya no es una aplicación que se pueda cerrar desde aquí.",
                                   "It is no longer an application that can be quit from here."));
        return;
    }
    if (!stopping_.insert(meant->pid).second) return;
    platform_.dispatcher->global(
        QualityOfService::userInitiated,
        [weak = weak_from_this(), &platform = platform_, application = *meant, byForce] {
            const bool hasEnded = stopNow(application, byForce, platform);
            platform.dispatcher->main([weak, application, byForce, hasEnded] {
                if (const auto self = weak.lock()) self->tell(application, byForce, hasEnded);
            });
        });
}

void QuitIntents::tell(const QuittableApplication& application, bool byForce, bool hasEnded) {
    stopping_.erase(application.pid);
    link_.evaluate(events::applicationStopped(application.pid, hasEnded));
    if (hasEnded) return;
    const std::string name = singleLine(application.name);
    if (byForce) {
        link_.toast(
            "No se pudo terminar", "Couldn't end",
            language_.text(
                fmt::format("«{}» sigue en marcha: el sistema no ha dejado terminarla.", name),
                fmt::format("“{}” is still running: the system did not let Velto end it.", name)));
        return;
    }
    link_.toast(
        "No se pudo cerrar", "Couldn't quit",
        language_.text(
            fmt::format("«{}» sigue abierta. Puede que espere a que guardes algo.", name),
            fmt::format("“{}” is still open. It may be waiting for you to save something.", name)));
}

}  // namespace velto
