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

void JSBridge::forgetLocalData() {
    exclusions_.clear();
    bootState.reset();
    pushState();
    evaluate(events::exclusions(exclusions_.paths()));
    toast("Velto restablecida", "Velto has been reset",
          language_.text("Se han eliminado el mantenimiento automático y todos los datos locales.",
                         "Automatic maintenance and all local data have been removed."));
}

}  // namespace velto
