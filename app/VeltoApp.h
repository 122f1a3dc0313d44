#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/AppDelegate.h"
#include "app/OrderlyQuit.h"
#include "bridge/CleanupQueue.h"
#include "bridge/UninstallGate.h"
#include "bridge/WorkProgress.h"
#include "platform/ApplicationShell.h"
#include "platform/Platform.h"
#include "platform/WebView.h"
#include "settings/AppLanguage.h"
#include "settings/VeltoSettings.h"

namespace velto {

class JSBridge;

/// One entry of the application menu.
struct AppCommand {
    std::string_view titleEs;
    std::string_view titleEn;
    char key;    // lower-case letter or sign of the shortcut, 0 for none
    bool shift;  // with Shift, beside Command (macOS) or Control (Linux)
    std::string_view intent;
    std::string_view argument;  // string payload, empty for none
    std::string_view action;    // its name among the actions on Linux's session bus
    std::string_view option;    // of the command line; empty for none
};

/// The windowed application without its windows: what the code of each system carries out, in this
/// order: `setShell` once; then for every window `windowOpened`, `pageLoaded`, `windowClosed`.
/// Main thread.
class VeltoApp {
public:
    explicit VeltoApp(Platform& platform);
    ~VeltoApp();

    AppDelegate& delegate() { return delegate_; }
    AppLanguage& language() { return language_; }

    /// To be asked before the program ends, and before it lets go of a window with which it ends.
    OrderlyQuit& quit() { return quit_; }

    /// The shell outlives the application object's use.
    void setShell(ApplicationShell& shell);

    /// Where the desktop shows what runs; null when the program ends, which takes it away. The task
    /// bar outlives its use.
    void setTaskBar(TaskBar* taskBar) { progress_.show(taskBar); }

    /// A window with its web view exists and has loaded nothing yet: makes the bridge and attaches
    /// it. The bridge holds the view weakly.
    void windowOpened(const std::shared_ptr<WebView>& webView);

    /// The page has finished loading.
    void pageLoaded();

    /// The window and its web view are gone.
    void windowClosed();

    static std::span<const AppCommand> commands();
    /// The one that a Mac has in the menu with the program's name.
    static const AppCommand& settingsCommand();
    /// The one for help, after all others.
    static const AppCommand& guideCommand();
    std::string_view title(const AppCommand& command) const;  // in the current language
    void perform(const AppCommand& command);                  // nothing while no bridge exists
    /// As `perform`, but where no page stands it waits for the next one. Of several that wait, the
    /// last one is carried out.
    void performWhenShown(const AppCommand& command);
    /// The command of whose option one of the process arguments is the very text; else null.
    static const AppCommand* askedFor(const std::vector<std::string>& arguments);

private:
    Platform& platform_;
    VeltoSettings settings_;
    AppLanguage language_;
    AppDelegate delegate_;
    WorkProgress progress_;
    CleanupQueue cleanups_;
    UninstallGate uninstalls_;
    OrderlyQuit quit_;
    ApplicationShell* shell_ = nullptr;
    std::shared_ptr<JSBridge> bridge_;
    bool pageStands_ = false;
    const AppCommand* waiting_ = nullptr;
};

/// Runs the application with its window until it ends; returns the exit status. `asked` (or null)
/// is carried out once the page stands, by the application that runs already where one does.
/// Implemented once per system (app/window/<system>).
int runWindowedApplication(VeltoApp& app, Platform& platform, const AppCommand* asked);

}  // namespace velto
