#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "bridge/CleanupQueue.h"
#include "bridge/UninstallGate.h"
#include "platform/Platform.h"
#include "platform/WebView.h"
#include "settings/AppLanguage.h"

namespace velto {

/// Lets the windowed program end once nothing changes the user's files any more, and says what it
/// waits for: in the window while there is one, else by a notification. Main thread.
class OrderlyQuit {
public:
    /// All but the queue and the gate, which are copies of the same ones, outlive the object.
    OrderlyQuit(Platform& platform, const AppLanguage& language, const CleanupQueue& cleanups,
                const UninstallGate& uninstalls)
        : platform_(platform), language_(language), cleanups_(cleanups), uninstalls_(uninstalls) {}

    /// True when the program may end now. Else the user is told, and `ready` is called as soon as
    /// it may, on the main thread. Asked again meanwhile, each `ready` is called, in that order.
    bool request(std::function<void()> ready);

    /// The page of the window that is open; null when there is none. The view is held weakly. A
    /// page that has just loaded is told what the others know.
    void setView(const std::shared_ptr<WebView>& view) { view_ = view; }
    void pageLoaded();

private:
    bool isChanging() const { return uninstalls_.isTaken() || cleanups_.isBusy(); }
    const char* running() const { return uninstalls_.isTaken() ? "uninstall" : "cleanup"; }
    void tellUser();
    void lookAgain();

    Platform& platform_;
    const AppLanguage& language_;
    CleanupQueue cleanups_;
    UninstallGate uninstalls_;
    std::weak_ptr<WebView> view_;
    std::vector<std::function<void()>> waiting_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // for what the main thread runs
};

}  // namespace velto
