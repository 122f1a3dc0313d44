#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"

namespace velto {

/// A file or folder that can usually be removed without harm.
struct Candidate {
    std::string ruleID;
    std::string path;   // absolute, valid UTF-8
    double gb = 0;      // logical size in decimal gigabytes, not rounded
    int daysOld = 0;    // whole days, never negative
    std::string label;  // the line shown to the user, in Spanish whatever the language

    bool operator==(const Candidate&) const = default;
};

/// One way of finding candidates.
struct Rule {
    std::string id;
    std::string name;  // in Spanish whatever the language
    /// Blocks while folders are measured. What cannot be listed or read is left out; throws only
    /// when the machine cannot go on at all (std::system_error without a thread, no memory).
    std::function<std::vector<Candidate>()> discover;
};

/// Finds what could be cleaned in the user's home. It only proposes: nothing is changed. What the
/// program's trash could not take for a link on the way is left out, and on a freedesktop home the
/// caches that are never taken (caches_never_taken.h). How certain a cache is made again, a
/// CacheJudge tells. The result
/// depends on the files alone, not on the order in which they are listed or measured. One thread at
/// a time.
class CleaningRules {
public:
    /// `hasAccess` tells whether the folders that the system protects may be read; it is asked anew
    /// for each discovery. The platform outlives the object.
    CleaningRules(const Platform& platform, std::function<bool()> hasAccess);
    CleaningRules(const CleaningRules&) = delete;
    CleaningRules& operator=(const CleaningRules&) = delete;

    /// "caches", "xcode", "oldDownloads", "installers"; made at the first call, alive as long as
    /// the object.
    const std::vector<Rule>& rules();

    /// The candidates of all rules that the access allows, each path once, the largest first and
    /// equal sizes by path. Never fails: a rule that does contributes nothing.
    std::vector<Candidate> discoverAll();

    /// Days since the last change of anything in a candidate of `discoverAll`, by path, where that
    /// is less than its `daysOld`: a folder's own date tells only what came into it and left it.
    using Ages = std::map<std::string, int>;
    Ages agesInside(const std::vector<Candidate>& candidates) const;

private:
    struct Download {
        std::string name;
        std::string path;
        std::int64_t bytes = 0;
        int daysUnused = 0;
    };

    std::vector<Candidate> caches();
    std::vector<Candidate> xcode();
    std::vector<Candidate> oldDownloads() const;
    std::vector<Candidate> installers() const;

    std::vector<std::optional<std::int64_t>> measured(const std::vector<std::string>& paths);
    bool isWithinReach(const std::string& path) const;
    std::vector<std::string> names(const std::string& folder) const;
    std::vector<Download> largeDownloads(
        const std::function<bool(std::string_view)>& isWanted) const;
    int daysSinceModified(const std::string& path) const;
    int daysSince(double date) const;

    const Platform& platform_;
    std::function<bool()> hasAccess_;
    std::vector<Rule> rules_;
    std::map<std::string, double> newest_;  // changes inside what was measured last, by path
};

}  // namespace velto
