#include "app/run_modes.h"

#include <algorithm>

#include "app/VeltoApp.h"
#include "bridge/JSBridge.h"

namespace velto {

RunMode runModeOf(const std::vector<std::string>& arguments) {
    const auto given = [&](std::string_view argument) {
        return std::find(arguments.begin(), arguments.end(), argument) != arguments.end();
    };
    if (given("--maintenance")) return RunMode::maintenance;
    if (given("--reset")) return RunMode::reset;
    return RunMode::interactive;
}

int runReset(Platform& platform) {
    resetLocalData(platform);
    return 0;
}

int runMaintenance(Platform& platform) {
    platform.log->line("Velto ▶ mantenimiento: esta versión aún no tiene reglas que aplicar");
    return 0;
}

int runInteractive(Platform& platform) {
    VeltoApp app(platform);
    return runWindowedApplication(app, platform);
}

}  // namespace velto
