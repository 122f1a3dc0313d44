#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "platform/Platform.h"
#include "uninstall/AppEntry.h"
#include "uninstall/InstalledApps.h"
#include "uninstall/ItemRemoval.h"
#include "uninstall/removal_rules.h"

namespace velto {

/// Removes an application and the leftovers that the user has chosen: quits it, unloads its agents,
/// deletes for good. No failure ends the run; each path fails alone. Keeps nothing between runs.
/// Blocking; one run at a time, on any thread.
class AppRemover {
public:
    /// One path that was not removed. When only a part of it is left, `path` is where that lies.
    struct Failure {
        std::string name;  // last path component
        std::string path;
        std::string reason;  // a code of `RemovalReason`

        bool operator==(const Failure&) const = default;
    };

    struct Result {
        std::string name;               // the application's
        int removed = 0;                // items deleted
        double freed = 0;               // decimal GB, three decimals
        int closed = 0;                 // processes quit
        std::vector<Failure> failures;  // in the order in which they happened
        std::vector<std::string> gone;  // the chosen paths that were deleted to the end
    };

    struct Item {
        std::string name;
        std::string path;
    };
    /// Stage ("stop", "files", "clean", "done"), the item in hand and a percentage. Called on the
    /// thread of the run.
    using Progress = std::function<void(std::string_view stage, const std::optional<Item>& item,
                                        double percent)>;

    /// Where chosen paths lead through links, as the analysis has shown it to the user.
    using ShownTargets = std::map<std::string, std::string>;

    /// Both outlive the object.
    AppRemover(const Platform& platform, const InstalledApps& apps)
        : platform_(platform), apps_(apps), removal_(platform, apps) {}

    /// What lies behind a link that is not in `shown`, or leads elsewhere by now, stays and is
    /// reported.
    Result uninstall(const AppEntry& entry, const std::vector<std::string>& paths,
                     const Progress& progress = {}, const ShownTargets& shown = {});

    /// Asks every process of the application to quit, helpers inside the bundle or the sandbox too,
    /// waits two seconds at most and ends the rest by force. Returns how many there were.
    int quitApp(const AppEntry& entry);

    /// Unloads each launch agent and daemon among the paths that names itself. What cannot be read
    /// or unloaded is skipped, and so is this program's own.
    void unloadAgents(const std::vector<std::string>& paths);

private:
    void unloadLaunchdAgent(const std::string& path);
    void unloadUserUnit(const std::string& path);
    struct Terms {
        const ShownTargets& shown;
        const Claims& claims;
    };
    void removeOne(const std::string& path, const AppEntry& entry, const Terms& terms,
                   Result& result, std::int64_t& bytes);
    bool isUserFlatpak(const std::string& path, const AppEntry& entry) const;
    std::int64_t removeFlatpak(const AppEntry& entry);
    void fail(const std::string& path, RemovalReason reason, Result& result) const;

    const Platform& platform_;
    const InstalledApps& apps_;
    ItemRemoval removal_;
};

/// The result as the page is given it.
nlohmann::json toJson(const AppRemover::Result& result);

}  // namespace velto
