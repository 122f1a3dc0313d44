// The scanner's whole walk of a home, classification and result included, hashing left out:
// `bench_scan HOME`. Prints the counted files and their bytes, the peak of resident memory in KiB
// and the bytes of everything below the home.
#include <cstdint>
#include <cstdio>
#include <exception>

#include <fmt/format.h>

#include "analysis/PermissionService.h"
#include "analysis/ScannerService.h"
#include "linux/BenchPlatform.h"

namespace {

std::int64_t folderItself(const velto::Platform& platform) {
    velto::FolderStatus status;
    const auto home = platform.directories->open(platform.layout.home);
    if (!home || !platform.directories->status(*home, {}, status)) return 0;
    return status.allocatedSize;
}

}  // namespace

int main(int count, char** arguments) try {
    if (count != 2) {
        fmt::print(stderr, "usage: bench_scan HOME\n");
        return 2;
    }
    const auto platform = velto::benchPlatform(arguments[1]);
    const velto::PermissionService permissions(*platform);
    velto::ScannerService scanner(*platform, permissions);
    scanner.scan({}, velto::CancellationFlag(), [](std::int64_t, double) {});
    const velto::FolderTree& tree = *scanner.folders();
    const std::int64_t below = tree[0].bytes - folderItself(*platform);
    fmt::print("{} {} {} {}\n", scanner.filesScanned, scanner.bytesScanned, velto::peakMemory(),
               below);
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_scan: {}\n", error.what());
    return 1;
}
