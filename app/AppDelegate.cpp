#include "app/AppDelegate.h"

#include "bridge/JSBridge.h"

namespace velto {

void AppDelegate::applicationDidFinishLaunching() { platform_.notifications->removeAllDelivered(); }

void AppDelegate::applicationDidBecomeActive() {
    if (const auto bridge = JSBridge::current()) bridge->checkFullDiskAccess();
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() const {
    return !platform_.files->exists(platform_.layout.agentFile);
}

}  // namespace velto
