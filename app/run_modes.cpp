#include "app/run_modes.h"

#include <algorithm>

#include "analysis/ExclusionService.h"
#include "analysis/PermissionService.h"
#include "app/VeltoApp.h"
#include "bridge/JSBridge.h"
#include "maintenance/MaintenanceRun.h"
#include "platform/background_priority.h"

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
    runInBackground();
    VeltoSettings settings(*platform.defaults, *platform.locale);
    const AppLanguage language(settings);
    MaintenanceScheduler scheduler(platform);
    const MaintenanceRules::Limits limits{.hasAccess = PermissionService(platform).hasAccess(),
                                          .excluded = ExclusionService::shared().paths()};
    MaintenanceRun(platform, settings, language, VeltoTrashService::shared(), scheduler)
        .perform(limits);
    return 0;
}

int runInteractive(Platform& platform) {
    VeltoApp app(platform);
    return runWindowedApplication(app, platform);
}

}  // namespace velto
