#include "bridge/CleanupOutcome.h"
#include "bridge/JSBridge.h"
#include "bridge/events.h"

namespace velto {

void resetLocalData(Platform& platform) {
    try {
        MaintenanceScheduler(platform).remove();
    } catch (const FileError& error) {
        platform.log->line(error.what());
    }
    try {
        platform.files->removeAll(platform.layout.dataFolder);
    } catch (const FileError& error) {
        // Not a failure of the reset: what stays is read as stale or damaged data at worst.
        platform.log->line(error.what());
    }
    platform.log->line("Velto ▶ reset completo: LaunchAgent y datos eliminados");
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
    cleanableSizes_.clear();
    evaluate(events::exclusions(exclusions_.paths()));
    toast("Velto restablecida", "Velto has been reset",
          language_.text("Se han eliminado el mantenimiento automático y todos los datos locales.",
                         "Automatic maintenance and all local data have been removed."));
}

}  // namespace velto
