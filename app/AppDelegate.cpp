#include "app/AppDelegate.h"

#include "bridge/JSBridge.h"

namespace velto {

void AppDelegate::applicationDidFinishLaunching() { platform_.notifications->removeAllDelivered(); }

void AppDelegate::applicationDidBecomeActive() {
    const auto bridge = JSBridge::current();
    if (!bridge) return;
    bridge->checkFullDiskAccess();
    bridge->refreshTrash();
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() const {
    return !platform_.files->exists(platform_.layout.agentFile);
}

}  // namespace velto
