#include <pwd.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <optional>
#include <utility>

#include "platform/Platform.h"
#include "platform/linux/GlibDispatcher.h"
#include "platform/linux/JsonUserDefaults.h"
#include "platform/linux/LinuxDirectoryReader.h"
#include "platform/linux/LinuxIcons.h"
#include "platform/linux/LinuxLocale.h"
#include "platform/linux/LinuxLog.h"
#include "platform/linux/LinuxNotifications.h"
#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/LinuxRunningApplications.h"
#include "platform/linux/LinuxSystemCounters.h"
#include "platform/linux/LinuxVolumeInfo.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/linux/icon_theme_name.h"
#include "platform/linux/installed_applications.h"
#include "platform/linux/packages/PackageKit.h"
#include "platform/linux/packages/Snapd.h"
#include "platform/linux/packages/SystemFlatpaks.h"
#include "platform/linux/property_lists.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixToolRunner.h"
#include "platform/values/text.h"
#include "platform/xdg_folders.h"

namespace velto {
namespace {

constexpr ReadLimit userDirsLimit = anyFile(1 << 20);  // eight lines and their comments

std::optional<std::string> environment(const std::string& name) {
    const char* const value = std::getenv(name.c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

/// $HOME, else what the user database says.
std::string homePath() {
    if (const auto home = environment("HOME"); home && !home->empty()) return *home;
    std::array<char, 16 * 1024> buffer;
    passwd entry{};
    passwd* found = nullptr;
    const int error = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
    if (error != 0 || found == nullptr || found->pw_dir == nullptr) {
        fatal("no home folder: HOME is not set and the user has none");
    }
    return found->pw_dir;
}

std::string resolvedHome(const FileManager& files) {
    try {
        std::string home = files.resolved(homePath());
        files.list(home);
        return home;
    } catch (const FileError& error) {
        fatal(std::string("the home folder cannot be read: ") + error.what());
    }
}

/// A path without links as far as it leads anywhere; what is not there yet keeps its name.
std::string resolvedAsFar(const FileManager& files, const std::string& path) {
    std::string rest;
    for (std::string above = path; above.size() > 1; above = parentFolder(above)) {
        try {
            return files.resolved(above) + rest;
        } catch (const FileError&) {
            rest = "/" + std::string(lastPathComponent(above)) + rest;
        }
    }
    return path;
}

HomeLayout::Resolve resolver(const FileManager& files) {
    return [&files](const std::string& path) { return resolvedAsFar(files, path); };
}

/// Where settings lie, and what the user calls the folders of the home.
std::string configurationFolder(const std::string& home, const FileManager& files) {
    return XdgFolders::configurationFolder(home, environment, resolver(files));
}

/// Where a Mac's disk is mounted, when the home lies on it as it does on a Mac ("/media/mac" for
/// "/media/mac/Users/ana"); else nothing.
std::string macDiskOf(const std::string& home) {
    constexpr std::string_view users = "/Users";
    const std::string folder = parentFolder(home);
    if (!folder.ends_with(users)) return {};
    return folder.substr(0, folder.size() - users.size());
}

HomeLayout layoutOf(const std::string& home, const FileManager& files) {
    for (const char* mark : {"/Library/Application Support", "/Library/Caches"}) {
        if (!files.exists(home + mark)) continue;
        HomeLayout layout = HomeLayout::macOS(home);
        // What is installed for all users is on that disk too, and not on this machine.
        layout.setSystemRoot(macDiskOf(home));
        return layout;
    }
    std::string userDirs;
    try {
        userDirs = files.read(configurationFolder(home, files) + "/user-dirs.dirs", userDirsLimit);
    } catch (const FileError&) {
        // Most often there is none; then the folders have their standard names.
    }
    return HomeLayout::freedesktop(home, environment, userDirs, resolver(files));
}

/// With the applications that desktop entries start, where the home has such, and all bundles.
std::unique_ptr<ProcessTable> makeProcessTable(const FileManager& files, const HomeLayout& layout) {
    const auto installed = std::make_shared<InstalledApplications>(files, layout.desktopEntries);
    LinuxProcessTable::Sources sources;
    sources.ownProcess = getpid();
    sources.applications = [installed] { return installed->index(); };
    return std::make_unique<LinuxProcessTable>(std::move(sources));
}

std::string executablePath(const FileManager& files, const std::string& programPath) {
    try {
        return files.resolved("/proc/self/exe");
    } catch (const FileError&) {
        return programPath;  // /proc is not mounted
    }
}

/// The parallel walk holds a folder open for every level below which work is left.
void raiseOpenFileLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);  // at worst the walk counts some folders as unreadable
}

}  // namespace

std::unique_ptr<Platform> makePlatform(const std::string& programPath) {
    raiseOpenFileLimit();
    auto platform = std::make_unique<Platform>();
    platform->log = std::make_unique<LinuxLog>(LinuxLog::toStandardError());
    platform->clock = std::make_unique<SystemClock>();
    platform->dispatcher = std::make_unique<GlibDispatcher>();
    platform->files = std::make_unique<PosixFileManager>();
    platform->mover = std::make_unique<PosixFileManager>();
    platform->directories = std::make_unique<LinuxDirectoryReader>();
    platform->volumes = std::make_unique<LinuxVolumeInfo>();

    const std::string home = resolvedHome(*platform->files);
    platform->layout = layoutOf(home, *platform->files);
    if (platform->layout.kind == HomeLayout::Kind::macOS && !readsPropertyLists()) {
        platform->log->line(
            "Velto ▶ compilado sin libplist: no se pueden leer las aplicaciones de una carpeta "
            "personal de Mac");
    }
    const std::string configuration = platform->layout.kind == HomeLayout::Kind::freedesktop
                                          ? platform->layout.configuration
                                          : configurationFolder(home, *platform->files);
    platform->settingsFolder = configuration + "/velto";
    platform->defaults =
        std::make_unique<JsonUserDefaults>(*platform->files, platform->mover.get(), *platform->log,
                                           platform->settingsFolder + "/settings.json");
    platform->locale = std::make_unique<LinuxLocale>(environment);
    platform->tools = std::make_unique<PosixToolRunner>();
    platform->packages.push_back(
        std::make_unique<SystemFlatpaks>(*platform->files, *platform->tools));
    platform->packages.push_back(std::make_unique<Snapd>());
    platform->packages.push_back(std::make_unique<PackageKit>());
    platform->workspace = std::make_unique<LinuxWorkspace>(*platform->log);
    platform->notifications = std::make_unique<LinuxNotifications>(
        *platform->files, *platform->log, platform->layout.dataFolder + "/notification.json");
    platform->executablePath = executablePath(*platform->files, programPath);
    platform->icons = std::make_unique<LinuxIcons>(
        *platform->files, parentFolder(platform->executablePath) + "/velto-icons",
        platform->layout.desktopEntries,
        [&files = *platform->files, configuration] { return iconThemeName(files, configuration); });
    platform->running = std::make_unique<LinuxRunningApplications>(*platform->dispatcher);
    platform->counters = std::make_unique<LinuxSystemCounters>();
    platform->processes = makeProcessTable(*platform->files, platform->layout);
    platform->userIdentifier = getuid();
    return platform;
}

}  // namespace velto
