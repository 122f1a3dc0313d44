#include "app/run_modes.h"

#include "analysis/ExclusionService.h"
#include "analysis/PermissionService.h"
#include "app/VeltoApp.h"
#include "app/arguments.h"
#include "bridge/JSBridge.h"
#include "maintenance/MaintenanceRun.h"
#include "platform/background_priority.h"

namespace velto {

RunMode runModeOf(const std::vector<std::string>& arguments) {
    if (isGiven("--maintenance", arguments)) return RunMode::maintenance;
    if (isGiven("--reset", arguments)) return RunMode::reset;
    return RunMode::interactive;
}

bool wantsDetailedLog(const std::vector<std::string>& arguments) {
    return isGiven("--debug-log", arguments);
}

int runReset(Platform& platform) {
    VeltoTrashService trash(*platform.files, *platform.mover, *platform.clock, *platform.log,
                            platform.layout);
    resetLocalData(platform, trash);  // tells the log of what stays
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

int runInteractive(Platform& platform, const std::vector<std::string>& arguments) {
    VeltoApp app(platform);
    return runWindowedApplication(app, platform, VeltoApp::askedFor(arguments));
}

}  // namespace velto
