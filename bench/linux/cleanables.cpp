// The discovery of all that can be cleaned: `bench_cleanables HOME`. Prints a line of bytes and
// path for each candidate.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>

#include <fmt/format.h>

#include "cleaning/CleaningRules.h"
#include "linux/BenchPlatform.h"
#include "platform/values/units.h"

int main(int count, char** arguments) try {
    if (count != 2) {
        fmt::print(stderr, "usage: bench_cleanables HOME\n");
        return 2;
    }
    const auto platform = velto::benchPlatform(arguments[1]);
    velto::CleaningRules rules(*platform, [] { return true; });
    for (const velto::Candidate& candidate : rules.discoverAll()) {
        fmt::print("{} {}\n", std::llround(candidate.gb * velto::bytesPerGigabyte), candidate.path);
    }
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_cleanables: {}\n", error.what());
    return 1;
}
