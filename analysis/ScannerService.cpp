#include "analysis/ScannerService.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "analysis/Classifier.h"
#include "analysis/PermissionService.h"
#include "analysis/ScanWorker.h"
#include "analysis/post_processing.h"
#include "analysis/relative_time.h"
#include "platform/parallel.h"
#include "platform/values/text.h"
#include "platform/values/units.h"
#include "platform/walk/TreeWalk.h"

namespace velto {
namespace {

constexpr double progressInterval = 0.2;  // seconds

/// Everything that the walk keeps out of.
void leaveOut(PlaceTable& places, const HomeLayout& layout, bool hasAccess,
              const std::vector<std::string>& excluded) {
    if (!hasAccess) {
        for (const NamedLocation& location : layout.protectedLocations) {
            places.leaveOut(location.path);
        }
        for (const std::string& path : layout.guardedPaths)
            places.leaveOut(path);
    }
    for (const std::string& path : excluded)
        places.leaveOut(path);
    for (const std::string& path : layout.neverWalked)
        places.leaveOut(path);
}

std::vector<WalkRoot> walkRoots(PlaceTable& places, const HomeLayout& layout,
                                const Classifier& classifier) {
    std::vector<WalkRoot> roots;
    for (const std::string& path : layout.walkRoots) {
        if (places.leavesOut(path)) continue;
        roots.push_back({path, classifier.markOfRoot(path), layout.home});
    }
    // Should a walk come to a root from above all the same, it is not walked twice.
    for (const WalkRoot& root : roots) {
        if (root.path != layout.home) places.leaveOut(root.path);
    }
    return roots;
}

std::vector<std::unique_ptr<ScanWorker>> makeWorkers(std::size_t count,
                                                     const Classifier& classifier, bool hasAccess) {
    std::vector<std::unique_ptr<ScanWorker>> workers;
    for (std::size_t index = 0; index < count; ++index) {
        workers.push_back(std::make_unique<ScanWorker>(classifier, hasAccess));
    }
    return workers;
}

BigFile bigFile(const ScanWorker::BigFileFound& found, double now) {
    const double days = std::max(0.0, (now - found.lastUse) / secondsPerDay);
    BigFile file;
    file.name = validUtf8(lastPathComponent(found.path));
    file.gb = roundedToTenth(gigabytes(found.size));
    file.kind = row(found.category).bigFileKind;
    file.last = relativeTime(days);
    file.lastN = std::round(days);
    file.path = found.path;
    file.isProtected = isProtectedPath(found.path);
    return file;
}

/// Calls the progress callback, but no more than once every interval.
class ProgressPacer {
public:
    ProgressPacer(const Clock& clock, const ScannerService::Progress& progress)
        : clock_(clock), progress_(progress), last_(clock.monotonic()) {}

    void report(const std::vector<std::unique_ptr<ScanWorker>>& workers) {
        const double now = clock_.monotonic();
        if (now - last_ <= progressInterval) return;
        last_ = now;
        std::int64_t files = 0;
        std::int64_t bytes = 0;
        for (const auto& worker : workers) {
            files += worker->files();
            bytes += worker->bytes();
        }
        if (progress_) progress_(files, gigabytes(bytes));
    }

private:
    const Clock& clock_;
    const ScannerService::Progress& progress_;
    double last_;
};

}  // namespace

ScannerService::ScannerService(Platform& platform, const PermissionService& permissions,
                               std::size_t threads)
    : platform_(platform),
      permissions_(permissions),
      threads_(threads == 0 ? processorCount() : threads) {}

AnalysisOutput ScannerService::scan(const std::vector<std::string>& excluded,
                                    const CancellationFlag& cancelled, const Progress& progress) {
    static_cast<WalkTotals&>(*this) = WalkTotals();
    unreadable_ = 0;
    const bool hasAccess = permissions_.hasAccess();
    walk(excluded, hasAccess, cancelled, progress);
    platform_.log->line(
        fmt::format("Velto ▶ recorrido completo: {} archivos, candidatos duplicado: {}",
                    filesScanned, fileList.size()));

    std::vector<std::string> keptOut;
    if (!hasAccess) {
        for (const NamedLocation& location : platform_.layout.protectedLocations) {
            keptOut.push_back(location.identifier);
        }
    }
    AnalysisOutput output =
        postProcess(platform_, *this, unreadable_, std::move(keptOut), cancelled);
    if (cancelled.isCancelled()) throw CancellationError();
    platform_.log->line(
        fmt::format("Velto ▶ post-proceso listo (duplicados: {} grupos)", output.dupGroups.size()));
    return output;
}

/// Fills the totals. Throws CancellationError with what was counted until then.
void ScannerService::walk(const std::vector<std::string>& excluded, bool hasAccess,
                          const CancellationFlag& cancelled, const Progress& progress) {
    const HomeLayout& layout = platform_.layout;
    PlaceTable places;
    const Classifier classifier(layout, places);
    leaveOut(places, layout, hasAccess, excluded);
    const std::vector<WalkRoot> roots = walkRoots(places, layout, classifier);

    const auto workers = makeWorkers(threads_, classifier, hasAccess);
    std::vector<TreeVisitor*> visitors;
    visitors.reserve(workers.size());
    for (const auto& worker : workers)
        visitors.push_back(worker.get());
    ProgressPacer pacer(*platform_.clock, progress);
    const WalkOptions options{.skipHidden = true, .places = &places};
    const TreeWalk::Result result =
        TreeWalk(*platform_.directories).run(roots, visitors, options, cancelled, [&] {
            pacer.report(workers);
        });

    for (std::size_t index = 0; index < roots.size(); ++index) {
        const int error = result.rootErrors[index];
        if (error != 0 && roots[index].path == layout.home) {
            fatal(fmt::format("Velto: the home folder {} cannot be read: {}", layout.home,
                              std::strerror(error)));
        }
        // A library that is missing, or a link, is not an unreadable one.
        if (error != 0 && error != ENOENT && error != ELOOP && error != ENOTDIR) ++unreadable_;
    }
    unreadable_ += result.unreadable;

    std::vector<ScanWorker::BigFileFound> found;
    for (const auto& worker : workers)
        worker->handOver(*this, found);
    if (result.cancelled) throw CancellationError();
    // Which worker met what, and when, must not show.
    std::ranges::sort(fileList, {}, &FileRecord::path);
    std::ranges::sort(found, {}, &ScanWorker::BigFileFound::path);
    const double now = platform_.clock->now();
    for (const auto& file : found) {
        catTop[std::string(row(file.category).id)].push_back(bigFile(file, now));
    }
}

}  // namespace velto
