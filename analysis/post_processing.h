#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "analysis/AnalysisOutput.h"
#include "analysis/WalkTotals.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"

namespace velto {

/// A volume's figures in GB; 0 when the system does not say.
struct VolumeFigures {
    double total = 0;
    double free = 0;
};

VolumeFigures volumeFigures(const VolumeInfo& volumes, const std::string& path);

/// Used bytes of the volume that the walk did not see, never negative.
std::int64_t systemRemainder(const VolumeFigures& volume, std::int64_t bytesScanned);

/// The six categories in their fixed order, empty ones included.
std::vector<Cat> categories(const std::map<std::string, std::int64_t>& bytes,
                            const std::map<std::string, std::int64_t>& files);

/// The 500 largest by their rounded size; equal ones stay in the order of the lists.
std::vector<BigFile> largestFiles(const std::map<std::string, std::vector<BigFile>>& lists);

/// The groups as the page shows them. Sizes and dates are read anew; one that cannot be read counts
/// as 0, and as older than all others. `now` is seconds since 1970.
std::vector<DupGroup> duplicateGroups(const std::vector<DupFinder::Group>& groups,
                                      const FileManager& files, double now);

/// All of the above for a walk of the home, with its log lines. `unreadable` is the number of items
/// that the walk could not read, `protectedLocations` are those that it kept out of. A set flag
/// ends the search for duplicates early, of which `progress` is told as DupFinder does. Files that
/// `digests` knows are not read again (null: nothing is remembered).
AnalysisOutput postProcess(Platform& platform, const WalkTotals& totals, std::int64_t unreadable,
                           std::vector<std::string> protectedLocations,
                           const CancellationFlag& cancelled = {},
                           const DupFinder::Progress& progress = {},
                           const std::shared_ptr<DigestStore>& digests = nullptr);

}  // namespace velto
