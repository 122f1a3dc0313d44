// The discovery of what the rules of rules/ name: `bench_further HOME`. Prints a line of bytes and
// path for each thing found.
#include <cstdio>
#include <exception>

#include <fmt/format.h>

#include "cleaning/further/FurtherDiscovery.h"
#include "linux/BenchPlatform.h"

int main(int count, char** arguments) try {
    if (count != 2) {
        fmt::print(stderr, "usage: bench_further HOME\n");
        return 2;
    }
    const auto platform = velto::benchPlatform(arguments[1]);
    const velto::FurtherDiscovery discovery(
        {.platform = *platform, .hasAccess = true, .smallest = 1});
    for (const velto::FurtherGroup& group : discovery.discover()) {
        for (const velto::FurtherItem& item : group.items)
            fmt::print("{} {}\n", item.bytes, item.path);
    }
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_further: {}\n", error.what());
    return 1;
}
