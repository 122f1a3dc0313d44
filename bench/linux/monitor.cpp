// What a sample of the system monitor costs: `bench_monitor cost PROCESSES SAMPLES` makes that many
// sleeping processes and prints milliseconds of processor time: of a sample (the mean, the first
// one and the refreshed process maps included), of a sample that opens its files anew, of the first
// sample, and of one ps (the median of as many runs); and the peak of resident memory in KiB.
// `bench_monitor memory SAMPLES` lets processes come and go and prints the bytes in use on the heap
// after a tenth of the samples and at the end.
#include <fcntl.h>
#include <malloc.h>
#include <signal.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "monitor/SystemMonitor.h"
#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/LinuxSystemCounters.h"
#include "platform/linux/LinuxVolumeInfo.h"
#include "platform/linux/installed_applications.h"
#include "platform/posix/PosixFileManager.h"

namespace {

using namespace velto;

double milliseconds(const rusage& used) {
    const auto of = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return of(used.ru_utime) + of(used.ru_stime);
}

double ownTime() {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return milliseconds(used);
}

/// Processes that sleep, and end with this object or with the program.
class Sleepers {
public:
    explicit Sleepers(int count) {
        for (int i = 0; i < count; ++i)
            add();
    }
    ~Sleepers() {
        while (!processes_.empty())
            endOldest();
    }
    Sleepers(const Sleepers&) = delete;
    Sleepers& operator=(const Sleepers&) = delete;

    void replaceOldest() {
        endOldest();
        add();
    }

private:
    void add() {
        const pid_t process = fork();
        if (process < 0) throw std::runtime_error("no more processes can be made");
        if (process > 0) {
            processes_.push_back(process);
            return;
        }
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        while (true)
            pause();
    }

    void endOldest() {
        kill(processes_.front(), SIGKILL);
        waitpid(processes_.front(), nullptr, 0);
        processes_.erase(processes_.begin());
    }

    std::vector<pid_t> processes_;
};

/// Two seconds pass between one look and the next.
class SteppingClock final : public Clock {
public:
    double now() const override { return time; }
    double monotonic() const override { return time; }
    double time = 0;
};

class NoQueue final : public SerialQueue {
public:
    void async(Work) override {}
    std::unique_ptr<Timer> repeat(double, double, Work) override { return nullptr; }
};

struct Machine {
    SteppingClock clock;
    LinuxSystemCounters counters;
    PosixFileManager files;
    InstalledApplications installed{files, {{entryOrigin::system, "/usr/share/applications"}}};
    LinuxProcessTable table{
        {.ownProcess = getpid(), .applications = [this] { return installed.index(); }}};
    LinuxVolumeInfo volumes;
    ApplicationActivity activity;
    SystemMonitor monitor{MonitorContext{.counters = counters,
                                         .processes = table,
                                         .volumes = volumes,
                                         .clock = clock,
                                         .activity = activity,
                                         .startupVolume = "/",
                                         .icon = {}},
                          std::make_unique<NoQueue>()};

    void sample() {
        clock.time += SystemMonitor::period;
        if (monitor.sample().dump().empty()) throw std::runtime_error("an empty sample");
    }
};

struct Cost {
    double first = 0;
    double mean = 0;
};

Cost costOfSamples(int count) {
    Machine machine;
    const double start = ownTime();
    machine.sample();
    const double first = ownTime();
    for (int i = 1; i < count; ++i)
        machine.sample();
    return {first - start, (ownTime() - start) / count};
}

/// With hardly any descriptors to keep.
Cost costWithReopenedFiles(int count) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit scarce{.rlim_cur = 32, .rlim_max = limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &scarce);
    const Cost cost = costOfSamples(count);
    setrlimit(RLIMIT_NOFILE, &limit);
    return cost;
}

double costOfPs() {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    const char* const arguments[] = {"ps", "-eo", "pid,ppid,rss,cputimes,comm", nullptr};
    pid_t process = 0;
    const int error = posix_spawnp(&process, "ps", &actions, nullptr,
                                   const_cast<char* const*>(arguments), environ);
    posix_spawn_file_actions_destroy(&actions);
    rusage used{};
    int status = 0;
    if (error != 0 || wait4(process, &status, 0, &used) != process || status != 0) {
        throw std::runtime_error("ps does not run");
    }
    return milliseconds(used);
}

void allowManyOpenFiles() {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

void cost(int processes, int samples) {
    allowManyOpenFiles();
    const Sleepers sleepers(processes);
    const Cost kept = costOfSamples(samples);
    const Cost reopened = costWithReopenedFiles(samples);
    std::vector<double> ps;
    ps.reserve(static_cast<std::size_t>(samples));
    for (int i = 0; i < samples; ++i)
        ps.push_back(costOfPs());
    std::nth_element(ps.begin(), ps.begin() + samples / 2, ps.end());
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    fmt::print("{:.3f} {:.3f} {:.3f} {:.3f} {}\n", kept.mean, reopened.mean, kept.first,
               ps[static_cast<std::size_t>(samples / 2)], used.ru_maxrss);
}

void memory(int samples) {
    constexpr int processes = 100;
    constexpr int samplesPerMap = 5;
    allowManyOpenFiles();
    Sleepers sleepers(processes);
    Machine machine;
    std::size_t early = 0;
    for (int i = 0; i < samples; ++i) {
        if (i % samplesPerMap == 0) sleepers.replaceOldest();
        machine.sample();
        if (i == samples / 10) early = mallinfo2().uordblks;
    }
    fmt::print("{} {}\n", early, mallinfo2().uordblks);
}

}  // namespace

int main(int count, char** arguments) try {
    const std::string_view mode = count > 1 ? arguments[1] : "";
    if (mode == "cost" && count == 4) {
        cost(std::atoi(arguments[2]), std::max(std::atoi(arguments[3]), 1));
    } else if (mode == "memory" && count == 3) {
        memory(std::atoi(arguments[2]));
    } else {
        fmt::print(stderr, "usage: bench_monitor cost PROCESSES SAMPLES | memory SAMPLES\n");
        return 2;
    }
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_monitor: {}\n", error.what());
    return 1;
}
