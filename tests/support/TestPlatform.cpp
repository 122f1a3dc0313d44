#include "support/TestPlatform.h"

#include <unistd.h>

#include "support/system_platform.h"

namespace velto {

TestPlatform::TestPlatform()
    : log(install<FakeLog>(platform.log)),
      clock(install<FakeClock>(platform.clock)),
      dispatcher(install<FakeDispatcher>(platform.dispatcher)),
      volumes(install<FakeVolumeInfo>(platform.volumes)),
      changes(install<FakeFolderChanges>(platform.changes)),
      defaults(install<FakeUserDefaults>(platform.defaults)),
      locale(install<FakeLocale>(platform.locale)),
      tools(install<FakeToolRunner>(platform.tools)),
      workspace(install<FakeWorkspace>(platform.workspace)),
      notifications(install<FakeNotifications>(platform.notifications)),
      icons(install<FakeIcons>(platform.icons)),
      running(install<FakeRunningApplications>(platform.running)),
      counters(install<FakeSystemCounters>(platform.counters)),
      processes(install<FakeProcessTable>(platform.processes)),
      sleeper(install<FakeSleeper>(platform.sleeper, clock)) {
    platform.files = systemFileManager();
    platform.mover = systemFileMover();
    platform.directories = systemDirectoryReader();
    platform.layout = HomeLayout::macOS(home.path());
    platform.makeQueue = [control = queue](const std::string&) {
        return std::make_unique<FakeSerialQueue>(control);
    };
    platform.userIdentifier = ::geteuid();
    platform.executablePath = "/opt/velto/velto";
}

}  // namespace velto
