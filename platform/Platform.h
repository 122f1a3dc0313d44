#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/ApplicationActivity.h"
#include "platform/BlockSharing.h"
#include "platform/Clock.h"
#include "platform/DirectoryReader.h"
#include "platform/Dispatcher.h"
#include "platform/FileContent.h"
#include "platform/FileManager.h"
#include "platform/FileMover.h"
#include "platform/FolderChanges.h"
#include "platform/HomeLayout.h"
#include "platform/Icons.h"
#include "platform/Locale.h"
#include "platform/Log.h"
#include "platform/Notifications.h"
#include "platform/PackageService.h"
#include "platform/ProcessTable.h"
#include "platform/RunningApplications.h"
#include "platform/SerialQueue.h"
#include "platform/Sleeper.h"
#include "platform/SystemCounters.h"
#include "platform/ToolRunner.h"
#include "platform/UserDefaults.h"
#include "platform/VolumeInfo.h"
#include "platform/Workspace.h"
#include "platform/program_identifier.h"

namespace velto {

/// What the program asks of the machine it runs on; built once at start and handed to constructors.
struct Platform {
    std::unique_ptr<Log> log;
    std::unique_ptr<Clock> clock;
    std::unique_ptr<FileManager> files;
    std::unique_ptr<FileMover> mover;
    std::unique_ptr<DirectoryReader> directories;
    std::unique_ptr<FileContentReader> contents = makeFileContentReader();  // on every system
    std::unique_ptr<BlockSharing> sharing = makeBlockSharing();             // on every system
    std::unique_ptr<FolderChanges> changes = makeFolderChanges();           // on every system
    std::unique_ptr<VolumeInfo> volumes;
    std::unique_ptr<UserDefaults> defaults;
    std::unique_ptr<Locale> locale;
    std::unique_ptr<ToolRunner> tools;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<Notifications> notifications;
    std::unique_ptr<Icons> icons;
    std::vector<std::unique_ptr<PackageService>>
        packages;  // in the order to be asked; none on a Mac
    std::unique_ptr<RunningApplications> running;
    std::unique_ptr<SystemCounters> counters;
    std::unique_ptr<ProcessTable> processes;
    std::function<std::unique_ptr<SerialQueue>(const std::string& label)> makeQueue =
        makeSerialQueue;
    ApplicationActivity activity;                                          // the window tells it
    std::mutex sampling;                                                   // see SystemMonitor
    std::unique_ptr<Sleeper> sleeper = std::make_unique<SystemSleeper>();  // on every system

    HomeLayout layout;
    std::string settingsFolder;  // of the settings' file; empty where the system keeps them
    std::string executablePath;  // of the running program, absolute
    std::string bundleIdentifier = programIdentifier;
    unsigned userIdentifier = 0;  // the user's number
    bool runsFromBundle = false;  // an application bundle holds the executable (macOS)

    // Last, so that it ends first: it waits for work that still uses the rest.
    std::unique_ptr<Dispatcher> dispatcher;
};

/// The platform of this machine (platform/linux or platform/macos). `programPath` is the first
/// command-line argument. A home that cannot be resolved is fatal.
std::unique_ptr<Platform> makePlatform(const std::string& programPath);

/// The platform that the process-wide `shared()` services stand on. Set once in `main`, before any
/// of them is used; the platform outlives them.
Platform& processPlatform();
void setProcessPlatform(Platform& platform);

}  // namespace velto
