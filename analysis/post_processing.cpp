#include "analysis/post_processing.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "analysis/categories.h"
#include "analysis/relative_time.h"
#include "platform/values/text.h"
#include "platform/values/units.h"

namespace velto {
namespace {

constexpr std::size_t mostBigFiles = 500;

std::int64_t valueOrZero(const std::map<std::string, std::int64_t>& map, const std::string& key) {
    const auto found = map.find(key);
    return found == map.end() ? 0 : found->second;
}

DupGroup duplicateGroup(const DupFinder::Group& group, const FileManager& files, double now) {
    DupGroup result;
    result.id = group.hash;
    result.name = validUtf8(lastPathComponent(group.paths.front()));
    std::optional<double> fewestDays;
    for (std::size_t index = 0; index < group.paths.size(); ++index) {
        const std::string& path = group.paths[index];
        const std::optional<FileAttributes> attributes = files.attributes(path);
        const double size = attributes ? gigabytes(attributes->logicalSize) : 0;
        const double modified = attributes ? attributes->modified : distantPast;
        const double days = std::trunc((now - modified) / secondsPerDay);
        if (!fewestDays || days < *fewestDays) {
            fewestDays = days;
            result.recommended = static_cast<std::int64_t>(index);
        }
        result.paths.push_back(path);
        result.pairs.push_back({{validUtf8(lastPathComponent(path)), tenths(size)}});
    }
    return result;
}

Measurement measured(const VolumeInfo& volumes, const std::string& home, const WalkTotals& totals) {
    Measurement measurement;
    measurement.total = volumes.totalCapacity(home).value_or(0);
    measurement.free = volumes.availableCapacity(home).value_or(0);
    measurement.reserved = volumes.reservedCapacity(home).value_or(0);
    measurement.purgeable = volumes.purgeableCapacity(home).value_or(0);
    measurement.volumes = volumes.volumesBelow(home);
    measurement.home = totals.bytesScanned;
    return measurement;
}

}  // namespace

VolumeFigures volumeFigures(const VolumeInfo& volumes, const std::string& path) {
    return {gigabytes(volumes.totalCapacity(path).value_or(0)),
            gigabytes(volumes.availableCapacity(path).value_or(0))};
}

std::int64_t systemRemainder(const VolumeFigures& volume, std::int64_t bytesScanned) {
    const double unseen = volume.total - volume.free - gigabytes(bytesScanned);
    return static_cast<std::int64_t>(std::max(0.0, unseen) * bytesPerGigabyte);
}

std::vector<Cat> categories(const std::map<std::string, std::int64_t>& bytes,
                            const std::map<std::string, std::int64_t>& files) {
    std::vector<Cat> result;
    for (const CategoryRow& row : categoryTable) {
        Cat category;
        category.id = row.id;
        category.name = row.name;
        category.gb = roundedToTenth(gigabytes(valueOrZero(bytes, category.id)));
        category.icon = row.icon;
        category.col = row.colour;
        category.eq = row.equivalence;
        category.files = valueOrZero(files, category.id);
        result.push_back(std::move(category));
    }
    return result;
}

std::vector<BigFile> largestFiles(const std::map<std::string, std::vector<BigFile>>& lists) {
    std::vector<BigFile> files;
    for (const auto& [category, list] : lists)
        files.insert(files.end(), list.begin(), list.end());
    std::ranges::stable_sort(files, std::greater(), &BigFile::gb);
    if (files.size() > mostBigFiles) files.resize(mostBigFiles);
    return files;
}

std::vector<DupGroup> duplicateGroups(const std::vector<DupFinder::Group>& groups,
                                      const FileManager& files, double now) {
    std::vector<DupGroup> result;
    result.reserve(groups.size());
    for (const DupFinder::Group& group : groups) {
        result.push_back(duplicateGroup(group, files, now));
    }
    return result;
}

AnalysisOutput postProcess(Platform& platform, const WalkTotals& totals, std::int64_t unreadable,
                           std::vector<std::string> protectedLocations,
                           const CancellationFlag& cancelled, const DupFinder::Progress& progress,
                           const std::shared_ptr<DigestStore>& digests) {
    if (unreadable > 0) {
        platform.log->line(
            fmt::format("Velto escáner: {} elementos no legibles (omitidos)", unreadable));
    }
    AnalysisOutput output;
    output.protectedLocations = std::move(protectedLocations);
    const VolumeFigures volume = volumeFigures(*platform.volumes, platform.layout.home);
    output.total = volume.total;
    output.free = volume.free;

    std::map<std::string, std::int64_t> bytes = totals.catBytes;
    bytes[std::string(row(Category::system).id)] += systemRemainder(volume, totals.bytesScanned);
    output.cats = categories(bytes, totals.catFiles);
    output.files = largestFiles(totals.catTop);

    const DupFinder finder(*platform.clock, *platform.contents, 0, digests.get());
    const DupFinder::Result duplicates = finder.find(
        totals.fileList, [&] { return cancelled.isCancelled(); }, DupFinder::Budget::twelveSeconds,
        progress);
    // Those that were not asked about are gone or changed, if it got to all of them.
    if (digests && duplicates.left.empty()) digests->dropUnused();
    output.digests = digests;
    if (duplicates.budgetExhausted) {
        platform.log->line(
            "Velto ▶ duplicados: presupuesto de tiempo agotado, se devuelve lo comprobado");
    }
    output.dupGroups = duplicateGroups(duplicates.groups, *platform.files, platform.clock->now());
    output.uncompared = duplicates.left;
    output.details = listDetails(output.files, output.dupGroups, *platform.files);
    output.measurement = measured(*platform.volumes, platform.layout.home, totals);
    output.measurement.unreadable.count = unreadable;
    output.measurement.compared = {.complete = duplicates.left.empty(),
                                   .left = static_cast<std::int64_t>(duplicates.left.size())};
    return output;
}

}  // namespace velto
