#pragma once

#include <map>
#include <mutex>
#include <string>

#include "uninstall/AppRemover.h"
#include "uninstall/AppUsage.h"
#include "uninstall/InstalledApps.h"

namespace velto {

/// What the analyses have shown of links, by application. Safe from every thread.
class ShownLinks {
public:
    void remember(const std::string& application, AppRemover::ShownTargets targets) {
        const std::lock_guard guard(lock_);
        targets_[application] = std::move(targets);
    }

    /// Of the application's last analysis.
    AppRemover::ShownTargets of(const std::string& application) const {
        const std::lock_guard guard(lock_);
        const auto found = targets_.find(application);
        return found == targets_.end() ? AppRemover::ShownTargets() : found->second;
    }

private:
    mutable std::mutex lock_;
    std::map<std::string, AppRemover::ShownTargets> targets_;
};

/// What the work on applications needs; shared with work items, which may outlive the bridge.
struct AppsWork {
    AppsWork(const Platform& platform, AppUsage& usage)
        : apps(platform, usage), remover(platform, apps) {}

    InstalledApps apps;
    AppRemover remover;
    ShownLinks shown;
};

}  // namespace velto
