#include "bridge/CleanupOutcome.h"
#include "bridge/JSBridge.h"
#include "bridge/events.h"
#include "platform/values/text.h"

namespace velto {

namespace {

/// Where the data really lie when the data folder is a link; empty when it is none.
std::string linkedData(const Platform& platform) {
    const std::string& folder = platform.layout.dataFolder;
    const auto attributes = platform.files->attributes(folder);
    if (!attributes || attributes->kind != FileKind::symbolicLink) return {};
    try {
        return platform.files->resolved(folder);
    } catch (const FileError&) {
        return {};  // it leads nowhere, so there are no data
    }
}

/// False when it failed, which is logged and ends nothing: what stays is read as stale or damaged
/// data at worst.
template <typename Removal>
bool succeeds(Log& log, Removal removal) {
    try {
        removal();
        return true;
    } catch (const FileError& error) {
        log.line(singleLine(error.what()));
        return false;
    }
}

}  // namespace

void resetLocalData(Platform& platform) {
    Log& log = *platform.log;
    const std::string& folder = platform.layout.dataFolder;
    const bool isAgentGone = succeeds(log, [&] { MaintenanceScheduler(platform).remove(); });
    const std::string elsewhere = linkedData(platform);
    const bool isFolderGone = succeeds(log, [&] { platform.files->removeAll(folder); });
    if (!isAgentGone) log.line("Velto ▶ reset incompleto: el LaunchAgent sigue instalado");
    if (!isFolderGone) log.line("Velto ▶ reset incompleto: quedan datos en " + singleLine(folder));
    if (isFolderGone && !elsewhere.empty()) {
        // What a link leads to is not the program's to erase.
        log.line(
            "Velto ▶ reset incompleto: la carpeta de datos era un enlace, que se ha quitado; "
            "los datos siguen en " +
            singleLine(elsewhere));
    }
    if (isAgentGone && isFolderGone && elsewhere.empty()) {
        log.line("Velto ▶ reset completo: LaunchAgent y datos eliminados");
    }
}

/// In its turn among the work on the trash: nothing is on its way into a folder that goes, and what
/// is asked for afterwards finds an empty trash.
void JSBridge::onResetVelto(const Payload&) {
    Platform& platform = platform_;
    ++resetsAhead_;
    runCleanup(
        [&platform, &usage = usage_](CleanupServices& services, CleanupOutcome&) {
            // Before its file goes: a use noted in between is written without the older ones.
            usage.forget();
            resetLocalData(platform);
            services.history.forget();
        },
        [](JSBridge& bridge, const CleanupOutcome&) { bridge.forgetLocalData(); });
}

void JSBridge::forgetLocalData() {
    --resetsAhead_;
    exclusions_.clear();
    bootState.reset();
    lists_.forget();
    evaluate(events::exclusions(exclusions_.paths()));
    toast("Velto restablecida", "Velto has been reset",
          language_.text("Se han eliminado el mantenimiento automático y todos los datos locales.",
                         "Automatic maintenance and all local data have been removed."));
}

}  // namespace velto
