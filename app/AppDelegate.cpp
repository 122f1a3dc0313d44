#include "app/AppDelegate.h"

#include "bridge/JSBridge.h"

namespace velto {

void AppDelegate::applicationDidFinishLaunching() {
    platform_.notifications->removeAllDelivered();
    usage_.start();
}

void AppDelegate::applicationDidBecomeActive() {
    platform_.activity.set(true);
    const auto bridge = JSBridge::current();
    if (!bridge) return;
    bridge->checkFullDiskAccess();
    bridge->refreshTrash();
}

void AppDelegate::applicationDidResignActive() { platform_.activity.set(false); }

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() const {
    return !platform_.files->exists(platform_.layout.agentFile);
}

}  // namespace velto
