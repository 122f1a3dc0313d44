#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Platform.h"
#include "uninstall/ProcessOwners.h"

namespace velto {

namespace defaultsKey {
inline constexpr const char* recordUses = "velto.recordUses";  // true unless switched off
}  // namespace defaultsKey

/// When applications were last used: what was seen while the program ran, kept in "app-usage.json"
/// in the data folder, unless the user has switched that off. Safe from every thread, but for
/// `start`.
class AppUsage {
public:
    /// Replaces the file at a path; throws FileError.
    using Write = std::function<void(const std::string& path, std::string_view content)>;

    /// Reads the file; a missing or unreadable one counts as empty. The platform outlives the
    /// object, which writes by its files when nothing else is given.
    explicit AppUsage(Platform& platform, Write write = nullptr);

    /// The process's instance, made at first use from the process's platform. Never destroyed.
    static AppUsage& shared();

    /// Records what runs now and, from now on, every application that is started or activated, when
    /// it is an installed one. Main thread; a second call does nothing. The object then lives as
    /// long as the platform's dispatcher runs its work.
    void start();

    /// Notes one use. Ignored: every use while it is switched off, an empty identifier, this
    /// program itself, a time that is not positive and one that is not later than what is known.
    /// Uses that come together are saved together, a moment later and off the main thread.
    void record(const std::string& bundleID, double time);

    /// Writes what is not saved yet, if anything. Blocks. Failing is silent; the record goes on in
    /// memory.
    void save();

    /// The latest use seen, seconds since 1970, by bundle identifier.
    std::map<std::string, double> launches() const;

    /// Whether uses are noted.
    bool isRecording() const;

    /// Switches that, for later starts too. Off: every use is forgotten and the file removed.
    /// Blocks. Throws FileError when the file cannot be removed; nothing reads it while it is off.
    void setRecording(bool on);

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
    void saveLater();

    Platform& platform_;
    Write write_;
    std::mutex saving_;  // one at a time; taken before the other one
    mutable std::mutex lock_;
    std::map<std::string, double> launches_;
    bool isRecording_ = true;
    bool isSaved_ = true;
    bool isAwaited_ = false;  // a save
    ProcessOwners owners_;
};

}  // namespace velto
