#pragma once

#include "uninstall/AppRemover.h"
#include "uninstall/AppUsage.h"
#include "uninstall/InstalledApps.h"

namespace velto {

/// What the work on applications needs; shared with work items, which may outlive the bridge.
struct AppsWork {
    AppsWork(const Platform& platform, AppUsage& usage)
        : apps(platform, usage), remover(platform, apps) {}

    InstalledApps apps;
    AppRemover remover;
};

}  // namespace velto
