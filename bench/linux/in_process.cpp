// The scanner and the bare floor in turn inside one process, so that nothing but the walks is
// timed: `bench_in_process HOME RUNS`. Prints one line of milliseconds per run: scanner, floor.
#include <cstdio>
#include <cstdlib>
#include <exception>

#include <fmt/format.h>

#include "analysis/PermissionService.h"
#include "analysis/ScannerService.h"
#include "linux/BenchPlatform.h"
#include "linux/FloorWalk.h"
#include "platform/parallel.h"
#include "stopwatch.h"

int main(int count, char** arguments) try {
    if (count != 3) {
        fmt::print(stderr, "usage: bench_in_process HOME RUNS\n");
        return 2;
    }
    const auto platform = velto::benchPlatform(arguments[1]);
    const velto::PermissionService permissions(*platform);
    for (int run = std::atoi(arguments[2]); run > 0; --run) {
        velto::ScannerService scanner(*platform, permissions);
        velto::FloorWalk floor;
        const double scan =
            velto::milliseconds([&] { scanner.scan({}, velto::CancellationFlag(), {}); });
        const double bare = velto::milliseconds(
            [&] { floor = velto::FloorWalk::run(platform->layout.home, velto::processorCount()); });
        if (floor.files != scanner.filesScanned || floor.bytes != scanner.bytesScanned) {
            fmt::print(stderr, "bench_in_process: the walks disagree\n");
            return 1;
        }
        fmt::print("{:.2f} {:.2f}\n", scan, bare);
    }
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_in_process: {}\n", error.what());
    return 1;
}
