#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "analysis/DiskState.h"
#include "cleaning/CleaningRules.h"
#include "cleaning/further/FurtherDiscovery.h"

namespace velto {

/// The lists of the last analysis in full, and which paths have left their place since. The page is
/// shown the lists without those, and what comes back is shown as it was. Main thread.
///
/// The full lists live as long as the process: what comes back after a restart is listed again by
/// the next analysis.
class AnalysisLists {
public:
    /// A moment between two changes, to ask later what has left since.
    using Mark = std::uint64_t;
    Mark mark() const { return lastMark_; }

    /// Takes the lists of an analysis whose walk began at `begun`; what had left before is not in
    /// them, or stands at its place again.
    void replace(const DiskState& analysis, Mark begun);

    /// Takes duplicates that were found later.
    void add(const std::vector<DupGroup>& groups);

    void forget();

    /// Takes what the cleaning rules have proposed last, for its sizes.
    void replaceCleanables(const std::vector<Candidate>& found);

    /// The same of what the further rules have found.
    void replaceFurther(const std::vector<FurtherGroup>& found);

    /// The paths, with everything below them, are not at their place any more, or are again.
    void noteGone(const std::vector<std::string>& paths);
    void noteBack(const std::vector<std::string>& paths);

    bool hasGoneSince(const std::string& path, Mark mark) const;

    /// Puts into `state` what is still there: large files, and duplicate groups of two copies and
    /// more. True when that is something else than it held.
    bool show(DiskState& state) const;

    /// The size in GB that the analysis, or else the cleaning rules, have found.
    std::optional<double> sizeOf(const std::string& path) const;

private:
    using Sizes = std::unordered_map<std::string, std::optional<double>>;  // GB by path
    const Sizes& listedSizes() const;
    bool isGone(const std::string& path) const;
    /// When the path went last, by itself or with a folder that it lies in; nothing: it has not.
    std::optional<Mark> lastGone(std::string path) const;

    std::vector<BigFile> files_;
    std::vector<DupGroup> groups_;
    mutable std::optional<Sizes> listed_;       // made when first asked for
    std::map<std::string, double> cleanables_;  // GB by path
    std::map<std::string, double> further_;     // the same
    std::map<std::string, Mark> gone_;          // standardised paths
    Mark lastMark_ = 0;
};

}  // namespace velto
