#pragma once

#include "platform/Platform.h"
#include "uninstall/AppUsage.h"

namespace velto {

/// What the application does at the events of its life. Main thread.
class AppDelegate {
public:
    AppDelegate(Platform& platform, AppUsage& usage) : platform_(platform), usage_(usage) {}

    /// Takes back the notifications that maintenance runs have left, begins to note when
    /// applications are used, and sees to an installed agent (`MaintenanceScheduler::keepGoing`).
    void applicationDidFinishLaunching();

    /// Lets live samples begin that the page wants, and the current bridge check Full Disk Access
    /// and look whether a maintenance run has changed the trash meanwhile.
    void applicationDidBecomeActive();

    /// Nobody looks any more: live samples stop.
    void applicationDidResignActive();

    /// The program ends: what is not saved yet becomes a change that the end waits for.
    void applicationWillTerminate();

    /// No while automatic maintenance is installed: closing the window then leaves the program
    /// running, on purpose.
    bool applicationShouldTerminateAfterLastWindowClosed() const;

private:
    Platform& platform_;
    AppUsage& usage_;
};

}  // namespace velto
