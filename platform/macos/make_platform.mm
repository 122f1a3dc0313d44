#import <Foundation/Foundation.h>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>

#include "platform/Platform.h"
#include "platform/macos/MacDirectoryReader.h"
#include "platform/macos/MacDispatcher.h"
#include "platform/macos/MacIcons.h"
#include "platform/macos/MacLocale.h"
#include "platform/macos/MacLog.h"
#include "platform/macos/MacNotifications.h"
#include "platform/macos/MacProcessTable.h"
#include "platform/macos/MacRunningApplications.h"
#include "platform/macos/MacSystemCounters.h"
#include "platform/macos/MacUserDefaults.h"
#include "platform/macos/MacVolumeInfo.h"
#include "platform/macos/MacWorkspace.h"
#include "platform/macos/foundation_text.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixToolRunner.h"

namespace velto {
namespace {

std::string resolvedHome(const FileManager& files) {
    try {
        const std::string home = pathOf(NSFileManager.defaultManager.homeDirectoryForCurrentUser);
        const std::string resolved = files.resolved(home);
        files.list(resolved);
        return resolved;
    } catch (const FileError& error) {
        fatal(std::string("the home folder cannot be read: ") + error.what());
    }
}

std::string executablePath(const FileManager& files, const std::string& programPath) {
    try {
        return files.resolved(utf8(NSBundle.mainBundle.executablePath));
    } catch (const FileError&) {
        return programPath;  // it has been moved away while it runs
    }
}

/// The walk holds a folder open per level and thread; the system's first limit is 256.
void allowManyOpenFiles() {
    constexpr rlim_t wanted = 10240;  // OPEN_MAX: more is refused whatever the hard limit says
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= wanted) return;
    limit.rlim_cur = std::min(wanted, limit.rlim_max);
    setrlimit(RLIMIT_NOFILE, &limit);  // refused: folders that cannot be opened count as unreadable
}

/// Reading a file to compare it must not count as its last use.
void leaveAccessTimesAlone() {
    // Refused: most volumes note only the first access after a change anyway.
    setiopolicy_np(IOPOL_TYPE_VFS_ATIME_UPDATES, IOPOL_SCOPE_PROCESS, IOPOL_ATIME_UPDATES_OFF);
}

}  // namespace

std::unique_ptr<Platform> makePlatform(const std::string& programPath) {
    @autoreleasepool {
        allowManyOpenFiles();
        leaveAccessTimesAlone();
        NSBundle* bundle = NSBundle.mainBundle;
        auto platform = std::make_unique<Platform>();
        platform->log = std::make_unique<MacLog>();
        platform->clock = std::make_unique<SystemClock>();
        platform->dispatcher = std::make_unique<MacDispatcher>();
        platform->files = std::make_unique<PosixFileManager>();
        platform->mover = std::make_unique<PosixFileManager>();
        platform->directories = std::make_unique<MacDirectoryReader>();
        platform->volumes = std::make_unique<MacVolumeInfo>();
        platform->defaults = std::make_unique<MacUserDefaults>();
        platform->locale = std::make_unique<MacLocale>();
        platform->tools = std::make_unique<PosixToolRunner>();
        platform->workspace = std::make_unique<MacWorkspace>(*platform->log);
        platform->icons = std::make_unique<MacIcons>();
        platform->running = std::make_unique<MacRunningApplications>();
        platform->counters = std::make_unique<MacSystemCounters>();
        platform->processes = std::make_unique<MacProcessTable>();
        platform->userIdentifier = getuid();
        platform->layout = HomeLayout::macOS(resolvedHome(*platform->files));
        platform->executablePath = executablePath(*platform->files, programPath);
        if (bundle.bundleIdentifier != nil) {
            platform->bundleIdentifier = utf8(bundle.bundleIdentifier);
            platform->runsFromBundle = [bundle.bundlePath hasSuffix:@".app"];
        }
        platform->notifications =
            std::make_unique<MacNotifications>(*platform->log, platform->runsFromBundle);
        return platform;
    }
}

}  // namespace velto
