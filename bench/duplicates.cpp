// The duplicate finder over the files of a folder: `bench_duplicates FOLDER`. Prints the number of
// groups and of files in them.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <vector>

#include <fmt/format.h>

#include "cleaning/DupFinder.h"
#include "platform/Clock.h"
#include "platform/FileContent.h"

int main(int count, char** arguments) try {
    if (count != 2) {
        fmt::print(stderr, "usage: bench_duplicates FOLDER\n");
        return 2;
    }
    std::vector<velto::FileRecord> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(arguments[1])) {
        if (!entry.is_regular_file()) continue;
        files.push_back({entry.path(), static_cast<std::int64_t>(entry.file_size())});
    }
    const velto::SystemClock clock;
    const auto contents = velto::makeFileContentReader();
    const auto result = velto::DupFinder(clock, *contents).find(files);
    std::size_t copies = 0;
    for (const auto& group : result.groups)
        copies += group.paths.size();
    fmt::print("{} {}\n", result.groups.size(), copies);
    return result.budgetExhausted ? 1 : 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_duplicates: {}\n", error.what());
    return 1;
}
