// The scanner's whole walk of a home, classification and result included, hashing left out:
// `bench_scan HOME`. Prints the counted files and bytes and the peak of resident memory in KiB.
#include <cstdio>
#include <exception>

#include <fmt/format.h>

#include "analysis/PermissionService.h"
#include "analysis/ScannerService.h"
#include "linux/BenchPlatform.h"

int main(int count, char** arguments) try {
    if (count != 2) {
        fmt::print(stderr, "usage: bench_scan HOME\n");
        return 2;
    }
    const auto platform = velto::benchPlatform(arguments[1]);
    const velto::PermissionService permissions(*platform);
    velto::ScannerService scanner(*platform, permissions);
    scanner.scan({}, velto::CancellationFlag(), [](std::int64_t, double) {});
    fmt::print("{} {} {}\n", scanner.filesScanned, scanner.bytesScanned, velto::peakMemory());
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_scan: {}\n", error.what());
    return 1;
}
