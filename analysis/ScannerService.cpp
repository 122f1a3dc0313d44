#include "analysis/ScannerService.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <mutex>
#include <utility>

#include <fmt/format.h>

#include "analysis/PermissionService.h"
#include "analysis/ScanWorker.h"
#include "analysis/post_processing.h"
#include "analysis/relative_time.h"
#include "platform/parallel.h"
#include "platform/values/text.h"
#include "platform/values/units.h"

namespace velto {
namespace {

constexpr double progressInterval = 0.2;  // seconds

// Threads that read a disk which has to be waited for. Beyond it neither a solid-state disk nor a
// queue of requests to a rotating one gets faster.
constexpr std::size_t waitingThreads = 16;

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

/// The same for the comparison, whose threads report by themselves; one that meets another at it
/// goes on instead of waiting.
class ComparisonPacer {
public:
    ComparisonPacer(const Clock& clock, const ScannerService::Comparing& comparing)
        : clock_(clock), comparing_(comparing), last_(clock.monotonic()) {
        if (comparing_) comparing_(0, 0);
    }

    void report(std::int64_t files, std::int64_t bytes) {
        const std::unique_lock turn(lock_, std::try_to_lock);
        if (!turn.owns_lock()) return;
        const double now = clock_.monotonic();
        if (now - last_ <= progressInterval) return;
        last_ = now;
        comparing_(files, gigabytes(bytes));
    }

private:
    const Clock& clock_;
    const ScannerService::Comparing& comparing_;
    std::mutex lock_;
    double last_;
};

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
    : platform_(platform), permissions_(permissions), threads_(threads) {}

AnalysisOutput ScannerService::scan(const std::vector<std::string>& excluded,
                                    const CancellationFlag& cancelled, const Progress& progress,
                                    const Comparing& comparing) {
    static_cast<WalkTotals&>(*this) = WalkTotals();
    unreadable_ = 0;
    folders_ = nullptr;
    hiddenBytes_ = 0;
    keptWalk_ = nullptr;
    digests_ = DigestFile(*platform_.files, platform_.layout).load();
    const bool hasAccess = permissions_.hasAccess();
    walk(excluded, hasAccess, cancelled, progress);
    platform_.log->line(
        fmt::format("Velto ▶ recorrido completo: {} archivos, candidatos duplicado: {}",
                    filesScanned, fileList.size()));

    std::vector<std::string> keptOut;
    std::vector<std::string> withheld;
    if (!hasAccess) {
        for (const NamedLocation& location : platform_.layout.protectedLocations) {
            keptOut.push_back(location.identifier);
            withheld.push_back(location.path);
        }
    }
    ComparisonPacer pacer(*platform_.clock, comparing);
    DupFinder::Progress compared;
    if (comparing) compared = [&](auto files, auto bytes) { pacer.report(files, bytes); };
    AnalysisOutput output = postProcess(platform_, *this, unreadable_, std::move(keptOut),
                                        cancelled, compared, digests_);
    output.measurement.withheld = std::move(withheld);
    output.measurement.excluded = excluded;
    if (folders_) addFolders(output.measurement, *folders_, hiddenBytes_);
    if (cancelled.isCancelled()) throw CancellationError();
    platform_.log->line(
        fmt::format("Velto ▶ post-proceso listo (duplicados: {} grupos)", output.dupGroups.size()));
    return output;
}

HomeWalk::Question ScannerService::question(const std::vector<std::string>& excluded,
                                            bool hasAccess) const {
    const std::size_t processors = processorCount();
    return {.reader = *platform_.directories,
            .layout = platform_.layout,
            .excluded = excluded,
            .hasAccess = hasAccess,
            .threads = threads_ == 0 ? std::max(processors, waitingThreads) : threads_,
            .firstThreads = threads_ == 0 ? processors : 0};
}

/// Fills the totals. Throws CancellationError with what was counted until then.
void ScannerService::walk(const std::vector<std::string>& excluded, bool hasAccess,
                          const CancellationFlag& cancelled, const Progress& progress) {
    WalkKeeper keeper(platform_, excluded, hasAccess);
    if (walkAgain(keeper, excluded, hasAccess, cancelled, progress)) return;

    HomeWalk walk(question(excluded, hasAccess));
    if (keeper.isOn() && walk.isSimple()) walk.noteFolders(keeper.recentFrom());
    ProgressPacer pacer(*platform_.clock, progress);
    walk.run(cancelled, [&] { pacer.report(walk.workers()); });
    if (walk.homeError() != 0) {
        fatal(fmt::format("Velto: the home folder {} cannot be read: {}", platform_.layout.home,
                          std::strerror(walk.homeError())));
    }
    unreadable_ = walk.unreadableRoots();
    if (!cancelled.isCancelled()) {
        if (const auto noted = walk.noted()) keptWalk_ = keeper.text(noted->walk, nullptr);
    }

    std::vector<ScanWorker::BigFileFound> found;
    for (const auto& worker : walk.workers()) {
        unreadable_ += worker->unreadable();
        worker->handOver(*this, found);
    }
    if (cancelled.isCancelled()) throw CancellationError();
    // Which worker met what, and when, must not show.
    std::ranges::sort(fileList, {}, &FileRecord::path);
    takeBigFiles(std::move(found));
    HomeWalk::Folders walked = walk.takeFolders();
    folders_ = std::move(walked.tree);
    hiddenBytes_ = walked.hiddenBytes;
}

/// The same by what is kept of an earlier walk and what is told of changes since. False, and
/// nothing filled, when there is any doubt.
bool ScannerService::walkAgain(WalkKeeper& keeper, const std::vector<std::string>& excluded,
                               bool hasAccess, const CancellationFlag& cancelled,
                               const Progress& progress) {
    doubt_ = keeper.doubt();
    if (!keeper.isOn()) return false;
    const auto before = keeper.earlier(cancelled);
    doubt_ = keeper.doubt();
    if (cancelled.isCancelled()) throw CancellationError();
    if (!before) {
        platform_.log->line(fmt::format("Velto ▶ recorrido entero: {}", textOf(doubt_)));
        return false;
    }
    const EarlierWalk earlier{before->walk, before->readings};
    doubt_ = WalkDoubt::notOneWalk;
    HomeWalk walk(question(excluded, hasAccess));
    if (!walk.isSimple()) return false;
    walk.noteFolders(keeper.recentFrom(), &earlier);
    ProgressPacer pacer(*platform_.clock, progress);
    walk.runAgain(cancelled, [&] { pacer.report(walk.workers()); });
    if (cancelled.isCancelled()) throw CancellationError();
    const auto assembled = walk.noted();
    if (!assembled) {
        platform_.log->line(fmt::format("Velto ▶ recorrido entero: {}", textOf(doubt_)));
        return false;
    }
    doubt_ = WalkDoubt::none;
    platform_.log->line(fmt::format("Velto ▶ carpetas leídas de nuevo: {} de {}",
                                    before->readings.folders.size(),
                                    assembled->walk.folders.size()));
    assembled->walk.addTo(*this);
    std::ranges::sort(fileList, {}, &FileRecord::path);
    unreadable_ = assembled->walk.unreadable();
    std::vector<ScanWorker::BigFileFound> found;
    for (const auto& worker : walk.workers())
        worker->takeBigFiles(found);
    takeBigFiles(std::move(found));
    HomeWalk::Folders walked = walk.takeFolders(*assembled);
    folders_ = std::move(walked.tree);
    hiddenBytes_ = walked.hiddenBytes;
    keptWalk_ = keeper.text(assembled->walk, before.get());
    return true;
}

void ScannerService::takeBigFiles(std::vector<ScanWorker::BigFileFound> found) {
    std::ranges::sort(found, {}, &ScanWorker::BigFileFound::path);
    const double now = platform_.clock->now();
    for (const auto& file : found) {
        catTop[std::string(row(file.category).id)].push_back(bigFile(file, now));
    }
}

}  // namespace velto
