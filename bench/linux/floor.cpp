// The bare floor as a process of its own: `bench_floor FOLDER`. Prints the counted files and their
// bytes, the peak of resident memory in KiB and the bytes of everything below the folder.
#include <cstdio>

#include <fmt/format.h>

#include "linux/BenchPlatform.h"
#include "linux/FloorWalk.h"
#include "platform/parallel.h"

int main(int count, char** arguments) {
    if (count != 2) {
        fmt::print(stderr, "usage: bench_floor FOLDER\n");
        return 2;
    }
    const auto sum = velto::FloorWalk::run(arguments[1], velto::processorCount());
    fmt::print("{} {} {} {}\n", sum.files, sum.bytes, velto::peakMemory(), sum.total);
    return 0;
}
