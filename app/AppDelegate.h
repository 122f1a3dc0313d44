#pragma once

#include "platform/Platform.h"

namespace velto {

/// What the application does at the events of its life. Main thread.
class AppDelegate {
public:
    explicit AppDelegate(Platform& platform) : platform_(platform) {}

    /// Takes back the notifications that maintenance runs have left.
    void applicationDidFinishLaunching();

    /// Lets live samples begin that the page wants, and the current bridge check Full Disk Access
    /// and look whether a maintenance run has changed the trash meanwhile.
    void applicationDidBecomeActive();

    /// Nobody looks any more: live samples stop.
    void applicationDidResignActive();

    /// No while automatic maintenance is installed: closing the window then leaves the program
    /// running, on purpose.
    bool applicationShouldTerminateAfterLastWindowClosed() const;

private:
    Platform& platform_;
};

}  // namespace velto
