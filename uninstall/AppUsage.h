#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "platform/Platform.h"
#include "uninstall/ProcessOwners.h"

namespace velto {

/// When applications were last used: what was seen while the program ran, kept in "app-usage.json"
/// in the data folder. Safe from every thread, but for `start`.
class AppUsage {
public:
    /// Reads the file; a missing or unreadable one counts as empty. The platform outlives the
    /// object.
    explicit AppUsage(Platform& platform);

    /// The process's instance, made at first use from the process's platform. Never destroyed.
    static AppUsage& shared();

    /// Records what runs now and, from now on, every application that is started or activated, when
    /// it is an installed one. Main thread; a second call does nothing. The object then lives as
    /// long as the platform's dispatcher runs its work.
    void start();

    /// Notes one use. Ignored: an empty identifier, this program itself, a time that is not
    /// positive and one that is not later than what is known. Saving fails silently; the record
    /// goes on in memory.
    void record(const std::string& bundleID, double time);

    /// The latest use seen, seconds since 1970, by bundle identifier.
    std::map<std::string, double> launches() const;

    /// Forgets every use; the file is for whoever resets the data folder to remove.
    void forget();

    /// On a home without bundles: which processes are whose.
    void knowOwners(ProcessOwners owners);

    bool observing = false;  // `start` was called

private:
    std::optional<std::string> installedIdentifier(const RunningApplication& application) const;
    void recordRunning();
    void learnOwners();
    void recordIfInstalled(const RunningApplication& application);
    void load();
    void save() const;

    Platform& platform_;
    mutable std::mutex lock_;
    std::map<std::string, double> launches_;
    ProcessOwners owners_;
};

}  // namespace velto
