#pragma once

#include <memory>

#include "platform/Platform.h"
#include "support/FakeDispatcher.h"
#include "support/FakeFolderChanges.h"
#include "support/FakeSerialQueue.h"
#include "support/FakeSystemCounters.h"
#include "support/TempHome.h"
#include "support/fakes.h"

namespace velto {

/// A platform of fakes over a made home: the real file system below it, everything else in the
/// test's hands. The layout is a Mac's unless the test sets another.
struct TestPlatform {
    TestPlatform();

    TempHome home;
    Platform platform;

    FakeLog& log;
    FakeClock& clock;
    FakeDispatcher& dispatcher;
    FakeVolumeInfo& volumes;
    FakeFolderChanges& changes;
    FakeUserDefaults& defaults;
    FakeLocale& locale;
    FakeToolRunner& tools;
    FakeWorkspace& workspace;
    FakeNotifications& notifications;
    FakeIcons& icons;
    FakeRunningApplications& running;
    FakeSystemCounters& counters;
    FakeProcessTable& processes;
    /// The hand on the serial queues, of which a test makes one.
    std::shared_ptr<FakeSerialQueue::Control> queue = std::make_shared<FakeSerialQueue::Control>();
    FakeSleeper& sleeper;

    /// Makes a probe folder readable, which counts as Full Disk Access.
    void grantAccess() { home.folder("Library/Safari"); }
};

/// Puts a new fake into a slot of the platform and returns it.
template <typename Fake, typename Slot, typename... Arguments>
Fake& install(std::unique_ptr<Slot>& slot, Arguments&... arguments) {
    auto fake = std::make_unique<Fake>(arguments...);
    Fake& reference = *fake;
    slot = std::move(fake);
    return reference;
}

}  // namespace velto
