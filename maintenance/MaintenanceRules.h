#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cleaning/CleaningRules.h"
#include "cleaning/known_caches.h"
#include "maintenance/SystemTrash.h"
#include "maintenance/duplicate_copies.h"
#include "platform/Platform.h"

namespace velto {

/// The rule of the caches, those of Xcode included.
inline constexpr std::string_view cachesRule = "caches";

/// What the unattended pass moves into the program's own trash. Nothing is ever deleted here. One
/// thread at a time.
class MaintenanceRules {
public:
    struct Candidate {
        std::string path;
        std::string name;  // what the user is shown
        double gb = 0;     // decimal gigabytes, not rounded

        bool operator==(const Candidate&) const = default;
    };
    using Sizes = std::map<std::string, double>;  // GB by path
    /// Moves the paths into the program's trash all together or not at all, and returns the GB
    /// moved. Throws when it could not.
    using Mover = std::function<double(const std::vector<std::string>& paths, const Sizes& sizes)>;
    /// By rule id: "systemTrash", "oldDownloads", "caches", "duplicates". A missing one is off.
    using Switches = std::map<std::string, bool>;

    /// What the pass has to respect besides the switches.
    struct Limits {
        /// False: the folders that the system guards are left alone, so that nothing asks the user
        /// for permission while nobody is there.
        bool hasAccess = true;
        std::vector<std::string> excluded;  // where no duplicates are looked for
    };

    /// The platform and the cleaning rules outlive the object.
    MaintenanceRules(const Platform& platform, Mover mover, CleaningRules& cleaning, Limits limits);

    /// What the rules that are on would move, in their order, each path once. Blocks while folders
    /// are measured and files compared. What cannot be read is left out, and so is what the trash
    /// would refuse. Of the caches only those count that are certain to be made again.
    std::vector<Candidate> candidates(const Switches& switches);

    /// Moves the candidates, all at once or, when that fails, one by one, and returns those moved.
    std::vector<Candidate> run(const Switches& switches);

    /// The rules, by path, that offered what the last look for candidates has found.
    const std::map<std::string, std::string>& rulesByPath() const { return rulesByPath_; }

    /// True when the last look for candidates compared files: not when "duplicates" was off, the
    /// access was missing, or the comparison failed.
    bool hasLookedForDuplicates() const { return hasLookedForDuplicates_; }

private:
    struct Found {
        Candidate candidate;
        std::optional<DuplicateCopy> duplicate;  // what makes it one
        std::optional<velto::Candidate> cache;   // the same
        bool isFromSystemTrash = false;

        std::string_view rule() const;
    };

    std::vector<Found> find(const Switches& switches);
    std::vector<Found> fromSystemTrash() const;
    std::vector<Found> fromOldDownloads();
    std::vector<Found> fromCaches(std::string_view ruleID, const CacheJudge& judge);
    std::vector<velto::Candidate> fromCleaning(std::string_view ruleID);
    std::vector<Found> fromDuplicates(const std::vector<Found>& leaving) const;

    bool isStillWanted(const Found& found, const CacheJudge& judge) const;
    bool move(const std::vector<Found>& found);

    const Platform& platform_;
    Mover mover_;
    CleaningRules& cleaning_;
    Limits limits_;
    SystemTrash systemTrash_;
    std::map<std::string, std::string> rulesByPath_;
    bool hasLookedForDuplicates_ = false;
};

}  // namespace velto
