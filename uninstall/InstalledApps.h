#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "uninstall/AppEntry.h"
#include "uninstall/AppUsage.h"
#include "uninstall/LastUseEstimate.h"

namespace velto {

/// The applications that are installed, and what the uninstaller asks of one of them. On a Mac's
/// home these are bundles, on any other what its desktop entries start. Every
/// list is read afresh. Blocking; safe from every thread. Nothing throws but for std::system_error
/// when no thread can be started: what cannot be read is left out.
class InstalledApps {
public:
    /// Both outlive the object.
    InstalledApps(const Platform& platform, AppUsage& usage) : platform_(platform), usage_(usage) {}

    /// All of them but this program, by name in the user's own order. Sizes and teams are not
    /// looked up. One that runs and was never seen before is recorded as used now.
    std::vector<AppEntry> listApps();

    /// One application anew; nothing when there is none at the path.
    std::optional<AppEntry> readApp(const std::string& path) const;

    /// True when an application with the identifier of the entry runs now.
    bool isRunning(const AppEntry& entry) const;

    /// What runs now and is this application and nothing else: helpers inside its bundle or folder,
    /// on a Linux home also in its sandbox or unit. Never this program.
    std::vector<RunningApplication> processesOf(const AppEntry& entry) const;

    /// Bytes on disk, with everything below; 0 where nothing is.
    std::int64_t sizeOf(const std::string& path) const;
    std::vector<std::int64_t> sizesOf(const std::vector<std::string>& paths) const;

    /// A PNG as data URL; nothing when none can be made.
    std::optional<std::string> iconDataURL(const std::string& path, int size) const;

    /// The team that signed the bundle, as the signing tool says; nothing when it does not.
    std::optional<std::string> teamID(const std::string& path) const;

private:
    std::vector<AppEntry> listBundles() const;
    std::vector<AppEntry> listDesktopApplications();
    std::vector<std::string> bundlePaths() const;
    static double lastUse(const std::string& bundleID,
                          const std::map<std::string, double>& launches,
                          const LastUseEstimate& estimate);
    void recordRunning(std::vector<AppEntry>& entries);

    const Platform& platform_;
    AppUsage& usage_;
    // Where a desktop entry and not the application itself names the icon.
    mutable std::mutex lock_;
    mutable std::map<std::string, std::string> entries_;  // by the application's path
};

}  // namespace velto
