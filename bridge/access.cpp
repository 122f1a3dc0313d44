#include "bridge/JSBridge.h"
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

void JSBridge::onOpenAccessSettings(const Payload&) { openAccessSettings(); }

void JSBridge::onRequestAccess(const Payload&) {
    shell_.confirm(accessQuestion(language_), [weak = weak_from_this()](bool accepted) {
        const auto bridge = weak.lock();
        if (!bridge || !accepted) return;
        bridge->openAccessSettings();
        bridge->startAccessWatch();
    });
}

void JSBridge::onCheckAccess(const Payload& payload) {
    if (!permissions_.hasAccess()) {
        onRequestAccess(payload);
        return;
    }
    accessGranted = true;
    if (scanRunning) {
        pendingAccessRescan = true;
    } else {
        startAnalysis();
    }
}

void JSBridge::onResetAccess(const Payload&) {
    permissions_.resetGrant();  // logs its outcome; the settings pane shows the rest
    openAccessSettings();
    startAccessWatch();
}

void JSBridge::openAccessSettings() {
    platform_.workspace->openURL(accessSettingsURL);
    shell_.activate();
}

void JSBridge::startAccessWatch() {
    if (accessWatch) accessWatch->cancel();
    accessWatch = CancellationFlag();
    scheduleAccessCheck(*accessWatch, watchChecks);
}

void JSBridge::scheduleAccessCheck(const CancellationFlag& watch, int checksLeft) {
    platform_.dispatcher->mainAfter(watchInterval, [weak = weak_from_this(), watch, checksLeft] {
        const auto bridge = weak.lock();
        if (!bridge || watch.isCancelled()) return;
        bridge->checkFullDiskAccess();
        if (watch.isCancelled()) return;  // access was granted
        if (checksLeft > 1) {
            bridge->scheduleAccessCheck(watch, checksLeft - 1);
        } else {
            bridge->accessWatch.reset();
        }
    });
}

void JSBridge::checkFullDiskAccess() {
    const bool granted = permissions_.hasAccess();
    // Probed anew for the message, as for every message of this kind.
    evaluate(events::permissions(permissions_.hasAccess()));
    if (granted == accessGranted) return;
    accessGranted = granted;
    if (!granted) return;
    log("Velto ▶ Acceso total al disco concedido: se reanuda midiendo todo");
    if (accessWatch) {
        accessWatch->cancel();
        accessWatch.reset();
    }
    if (scanRunning) {
        pendingAccessRescan = true;
    } else {
        startAnalysis();
    }
}

}  // namespace velto
