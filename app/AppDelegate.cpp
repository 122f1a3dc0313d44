#include "app/AppDelegate.h"

#include "bridge/JSBridge.h"
#include "maintenance/MaintenanceScheduler.h"
#include "platform/notification_permission.h"
#include "settings/VeltoSettings.h"

namespace velto {

void AppDelegate::applicationDidFinishLaunching() {
    platform_.notifications->removeAllDelivered();
    usage_.start();
    if (!platform_.files->exists(platform_.layout.agentFile)) return;
    askToNotify(platform_);
    platform_.dispatcher->change([&platform = platform_] {
        const VeltoSettings settings(*platform.defaults, *platform.locale);
        MaintenanceScheduler(platform).keepGoing(settings.frequency());
    });
}

void AppDelegate::applicationDidBecomeActive() {
    platform_.activity.set(true);
    const auto bridge = JSBridge::current();
    if (!bridge) return;
    bridge->checkFullDiskAccess();
    bridge->refreshTrash();
}

void AppDelegate::applicationDidResignActive() { platform_.activity.set(false); }

void AppDelegate::applicationWillTerminate() {
    platform_.dispatcher->change([&usage = usage_] { usage.save(); });
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() const {
    return !platform_.files->exists(platform_.layout.agentFile);
}

}  // namespace velto
