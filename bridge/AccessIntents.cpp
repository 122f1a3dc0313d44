#include "bridge/AccessIntents.h"

#include "bridge/events.h"

namespace velto {
namespace {

constexpr const char* accessSettingsURL =
    "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?Privacy_AllFiles";
constexpr double watchInterval = 2;  // seconds
constexpr int watchChecks = 75;

Confirmation accessQuestion(const AppLanguage& language) {
    const auto text = [&](std::string_view es, std::string_view en) {
        return std::string(language.text(es, en));
    };
    return {
        .title = text("Un solo permiso, y solo si tú quieres",
                      "One permission, and only if you want it"),
        .body = text("Con el Acceso total al disco, Velto puede medir también el Escritorio, los "
                     "Documentos, las Descargas, Fotos y Mail. Nada sale de tu Mac, y puedes "
                     "retirarlo cuando quieras en Ajustes del Sistema. Sin él, Velto analiza todo "
                     "lo demás.",
                     "With Full Disk Access, Velto can also measure your Desktop, Documents, "
                     "Downloads, Photos and Mail. Nothing leaves your Mac, and you can take it "
                     "back at any time in System Settings. Without it, Velto analyses everything "
                     "else."),
        .accept = text("Abrir Ajustes del Sistema", "Open System Settings"),
        .decline = text("Ahora no", "Not now"),
    };
}

}  // namespace

void AccessIntents::onOpenAccessSettings(const Payload&) { openSettings(); }

void AccessIntents::onRequestAccess(const Payload&) {
    context_.shell.confirm(accessQuestion(context_.language),
                           [weak = weak_from_this()](bool accepted) {
                               const auto self = weak.lock();
                               if (!self || !accepted) return;
                               self->openSettings();
                               self->startWatch();
                           });
}

void AccessIntents::onCheckAccess(const Payload& payload) {
    if (!context_.permissions.hasAccess()) {
        onRequestAccess(payload);
        return;
    }
    context_.state.accessGranted = true;
    measureEverything();
}

/// Now, or once more when the running analysis has ended.
void AccessIntents::measureEverything() {
    if (context_.state.scanRunning) {
        context_.state.pendingAccessRescan = true;
    } else {
        context_.link.startAnalysis();
    }
}

void AccessIntents::onResetAccess(const Payload&) {
    context_.permissions.resetGrant();  // logs its outcome; the settings pane shows the rest
    openSettings();
    startWatch();
}

void AccessIntents::openSettings() {
    context_.platform.workspace->openURL(accessSettingsURL);
    context_.shell.activate();
}

void AccessIntents::startWatch() {
    if (context_.state.accessWatch) context_.state.accessWatch->cancel();
    context_.state.accessWatch = CancellationFlag();
    scheduleCheck(*context_.state.accessWatch, watchChecks);
}

void AccessIntents::scheduleCheck(const CancellationFlag& watch, int checksLeft) {
    context_.platform.dispatcher->mainAfter(watchInterval,
                                            [weak = weak_from_this(), watch, checksLeft] {
                                                const auto self = weak.lock();
                                                if (!self || watch.isCancelled()) return;
                                                self->check();
                                                if (watch.isCancelled())
                                                    return;  // access was granted
                                                if (checksLeft > 1) {
                                                    self->scheduleCheck(watch, checksLeft - 1);
                                                } else {
                                                    self->context_.state.accessWatch.reset();
                                                }
                                            });
}

void AccessIntents::check() {
    const bool granted = context_.permissions.hasAccess();
    // Probed anew for the message, as for every message of this kind.
    context_.link.evaluate(events::permissions(context_.permissions.hasAccess()));
    if (granted == context_.state.accessGranted) return;
    context_.state.accessGranted = granted;
    if (!granted) return;
    context_.platform.log->line(
        "Velto ▶ Acceso total al disco concedido: se reanuda midiendo todo");
    if (context_.state.accessWatch) {
        context_.state.accessWatch->cancel();
        context_.state.accessWatch.reset();
    }
    measureEverything();
}

}  // namespace velto
