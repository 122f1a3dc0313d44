// A second walk of a home of which a hundredth of the folders has changed, and one of everything,
// in turn inside one process: `bench_again HOME RUNS`. The source of changes is the bench's own:
// it tells exactly the folders that were changed. Prints one line of milliseconds per run: the
// walk of everything, the second walk with what is kept of the first being read and checked, the
// number of folders, and how many of them were changed.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <random>

#include <fmt/format.h>

#include "analysis/PermissionService.h"
#include "analysis/ScannerService.h"
#include "linux/BenchPlatform.h"
#include "stopwatch.h"

namespace velto {
namespace {

/// No history until the bench says so.
class ToldChanges final : public FolderChanges {
public:
    std::optional<ChangeMark> mark(const std::string&) override {
        return hasHistory ? std::optional(ChangeMark{"bench", ++event}) : std::nullopt;
    }
    std::optional<std::vector<FolderChange>> since(const ChangeMark&, const std::string&,
                                                   const CancellationFlag&) override {
        return changes;
    }

    bool hasHistory = false;
    std::uint64_t event = 0;
    std::vector<FolderChange> changes;
};

/// A day later than it is: what was made just now is not recent.
class TomorrowsClock final : public Clock {
public:
    double now() const override { return clock_.now() + 86'400; }
    double monotonic() const override { return clock_.monotonic(); }

private:
    SystemClock clock_;
};

/// A file more, or one less where it was before.
void change(const std::string& folder) {
    const std::string path = folder + "/bench-again";
    if (::unlink(path.c_str()) == 0) return;
    const int file = ::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    if (file < 0 || ::write(file, "again", 5) != 5 || ::close(file) != 0) {
        throw std::runtime_error(path + " cannot be written");
    }
}

int run(const std::string& home, int runs) {
    const auto platform = benchPlatform(home);
    platform->clock = std::make_unique<TomorrowsClock>();
    auto told = std::make_unique<ToldChanges>();
    ToldChanges& changes = *told;
    platform->changes = std::move(told);
    // Beside the home, which stays as it is but for the changes.
    platform->layout.dataFolder = platform->layout.home + "-kept";
    const PermissionService permissions(*platform);
    const auto scan = [&](ScannerService& scanner) {
        return milliseconds([&] { scanner.scan({}, CancellationFlag(), {}); });
    };
    std::vector<std::string> folders;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home)) {
        if (entry.is_directory()) folders.push_back(entry.path());
    }
    std::ranges::sort(folders);
    std::mt19937 random(1);
    {
        changes.hasHistory = true;
        ScannerService first(*platform, permissions);
        scan(first);
        WalkKeeper::save(*platform, *first.keptWalk());
    }
    for (; runs > 0; --runs) {
        std::vector<std::string> changed;
        std::ranges::sample(folders, std::back_inserter(changed),
                            static_cast<std::ptrdiff_t>(folders.size() / 100), random);
        changes.changes.clear();
        for (const std::string& folder : changed) {
            change(folder);
            changes.changes.push_back({folder});
        }
        changes.hasHistory = false;
        ScannerService whole(*platform, permissions);
        const double all = scan(whole);
        changes.hasHistory = true;
        ScannerService again(*platform, permissions);
        const double part = scan(again);
        if (again.doubt() != WalkDoubt::none || again.filesScanned != whole.filesScanned ||
            again.bytesScanned != whole.bytesScanned ||
            again.folders()->size() != whole.folders()->size()) {
            fmt::print(stderr, "bench_again: the walks disagree ({})\n", textOf(again.doubt()));
            return 1;
        }
        WalkKeeper::save(*platform, *again.keptWalk());
        fmt::print("{:.2f} {:.2f} {} {}\n", all, part, again.folders()->size(), changed.size());
    }
    return 0;
}

}  // namespace
}  // namespace velto

int main(int count, char** arguments) try {
    if (count != 3) {
        fmt::print(stderr, "usage: bench_again HOME RUNS\n");
        return 2;
    }
    return velto::run(arguments[1], std::atoi(arguments[2]));
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_again: {}\n", error.what());
    return 1;
}
