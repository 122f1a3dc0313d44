#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "cleaning/further/FurtherRule.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"
#include "platform/values/PlaceTable.h"

namespace velto {

/// The one walk of the home that all rules share: it looks for projects in folders that are not
/// hidden, goes on to the places that rules name, and measures what it has found. It follows no
/// link and stays on the home's volume.
class FurtherWalk {
public:
    /// What may be taken, as far as walking tells.
    struct Found {
        std::size_t rule = 0;  // index among the rules
        std::string path;
        std::int64_t bytes = 0;   // allocated, each file once however many names it has
        std::int64_t linked = 0;  // of these, files that have names elsewhere too: they stay
        double newest = 0;        // last change of anything inside, seconds since 1970
        double project = 0;       // the same of the whole project around it; 0 without one
        bool isWhole = true;      // false: an excluded, guarded or mounted folder lies inside
        bool isRead = true;       // false: something inside could not be read
    };

    /// Everything outlives the object.
    FurtherWalk(const Platform& platform, const std::vector<FurtherRule>& rules);

    /// Keeps out of `path` and everything below it. Before `run`.
    void leaveOut(const std::string& path) { places_.leaveOut(path); }

    /// `path` is a place of that rule; a second rule for the same path changes nothing. Before
    /// `run`.
    void add(std::size_t rule, const std::string& path);

    /// Walks, and returns what is there of the places and the projects, by path. Blocks; throws
    /// what the walk throws. An incomplete result when the flag was set meanwhile.
    std::vector<Found> run(const CancellationFlag& cancelled);

private:
    class Visitor;
    struct ProjectRule {
        std::size_t rule;
        std::string_view name;
    };
    struct Candidate {
        std::size_t rule = 0;
        std::string path;
        std::uint32_t project = 0;  // number of the folder around it, 0 for a place
    };

    std::optional<std::uint32_t> noteProject(const std::string& folder, std::string_view name,
                                             std::uint32_t project);
    std::vector<Found> collect(const std::vector<std::unique_ptr<Visitor>>& visitors) const;

    const Platform& platform_;
    const std::vector<FurtherRule>& rules_;
    std::vector<ProjectRule> projectRules_;
    PlaceTable places_;
    std::mutex lock_;
    std::vector<Candidate> candidates_;          // under the lock while the walk runs
    std::atomic<std::uint32_t> nextNumber_ = 1;  // of folders that are looked through
    std::uint64_t device_ = 0;                   // the home's; set before any other folder is met
    std::uint64_t mount_ = 0;
};

}  // namespace velto
