#include <array>

#include <fmt/format.h>

#include "bridge/JSBridge.h"
#include "bridge/events.h"

namespace velto {

/// Every intent with its handler, in the order of comparison. A row without one is recognised and
/// recorded; "webReady" has nothing to do, since the page has its first state already.
struct IntentTable {
    using Handler = void (JSBridge::*)(const Payload&);
    struct Row {
        std::string_view name;
        Handler handler;
    };

    static constexpr std::array<Row, 31> rows{{
        {"webReady", nullptr},
        {"settings", &JSBridge::onSettings},
        {"setTheme", &JSBridge::onSetTheme},
        {"scan", &JSBridge::onScan},
        {"systemWatch", &JSBridge::onSystemWatch},
        {"appsList", &JSBridge::onAppsList},
        {"appAnalysis", &JSBridge::onAppAnalysis},
        {"uninstall", &JSBridge::onUninstall},
        {"revealPath", &JSBridge::onRevealPath},
        {"deleteFiles", &JSBridge::onDeleteFiles},
        {"undoLast", &JSBridge::onUndoLast},
        {"restoreItem", &JSBridge::onRestoreItem},
        {"purgeItem", &JSBridge::onPurgeItem},
        {"purgeTrash", &JSBridge::onPurgeTrash},
        {"clearHistory", &JSBridge::onClearHistory},
        {"openFDASettings", &JSBridge::onOpenAccessSettings},
        {"requestAccess", &JSBridge::onRequestAccess},
        {"checkAccess", &JSBridge::onCheckAccess},
        {"resetAccess", &JSBridge::onResetAccess},
        {"addExclusion", &JSBridge::onAddExclusion},
        {"scanCleanables", &JSBridge::onScanCleanables},
        {"cleanPaths", &JSBridge::onCleanPaths},
        {"moveCloud", &JSBridge::onMoveCloud},
        {"resetVelto", &JSBridge::onResetVelto},
        {"goView", &JSBridge::onGoView},
        {"setAutoMaintenance", &JSBridge::onSettings},
        {"exclusions", &JSBridge::onExclusions},
        {"removeExclusion", &JSBridge::onRemoveExclusion},
        {"maintenanceStatus", &JSBridge::onMaintenanceStatus},
        {"measureMaintenance", &JSBridge::onMeasureMaintenance},
        {"restoreItemTo", &JSBridge::onRestoreItemTo},
    }};
};

void JSBridge::handle(const std::string& type, const Payload& payload) {
    pendingIntents.push_back(type);
    const auto detail =
        platform_.log->isDetailed() ? payload::Detail::whole : payload::Detail::summary;
    log(fmt::format("Velto ▶ intención: {} payload: {}", type,
                    payload::description(payload, detail)));
    evaluate(events::intentEcho(type));
    for (const auto& row : IntentTable::rows) {
        if (row.name != type) continue;
        if (row.handler != nullptr) (this->*row.handler)(payload);
        return;
    }
}

void JSBridge::onSetTheme(const Payload& payload) {
    const auto theme = payload::stringMember(payload, "theme");
    if (!theme) return;
    const Appearance wanted = *theme == "light" ? Appearance::light : Appearance::dark;
    if (wanted == shell_.appearance()) return;
    shell_.setAppearance(wanted);
    log("Velto ▶ tema de la ventana: " + appearanceName(wanted));
}

void JSBridge::onScan(const Payload&) { startAnalysis(); }

void JSBridge::onRevealPath(const Payload& payload) {
    if (const auto path = payload::string(payload)) platform_.workspace->reveal(*path);
}

void JSBridge::onAddExclusion(const Payload& payload) {
    const auto path = payload::string(payload);
    if (!path) return;
    exclusions_.add(*path);
    toast("Excluido del análisis", "Excluded from the analysis", *path);
    evaluate(events::exclusions(exclusions_.paths()));
}

void JSBridge::onRemoveExclusion(const Payload& payload) {
    const auto path = payload::string(payload);
    if (!path) return;
    exclusions_.remove(*path);
    evaluate(events::exclusions(exclusions_.paths()));
}

void JSBridge::onExclusions(const Payload&) { evaluate(events::exclusions(exclusions_.paths())); }

void JSBridge::onGoView(const Payload& payload) {
    if (const auto name = payload::string(payload)) evaluate(events::goView(*name));
}

}  // namespace velto
