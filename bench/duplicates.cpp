// The duplicate finder over the files of a folder: `bench_duplicates [--unlimited] FOLDER [DATA]`.
// Prints the number of groups and of files in them. What was read of files is remembered in the
// folder DATA, and not read again. With `--unlimited` it takes the time that it takes.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "cleaning/DigestStore.h"
#include "cleaning/DupFinder.h"
#include "platform/Clock.h"
#include "platform/FileContent.h"
#include "platform/posix/PosixFileManager.h"

int main(int count, char** arguments) try {
    const bool isUnlimited = count > 1 && std::string_view(arguments[1]) == "--unlimited";
    if (isUnlimited) {
        --count;
        ++arguments;
    }
    if (count != 2 && count != 3) {
        fmt::print(stderr, "usage: bench_duplicates [--unlimited] FOLDER [DATA]\n");
        return 2;
    }
    using Budget = velto::DupFinder::Budget;
    const Budget budget = isUnlimited ? Budget::unlimited : Budget::twelveSeconds;
    std::vector<velto::FileRecord> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(arguments[1])) {
        if (!entry.is_regular_file()) continue;
        files.push_back({entry.path(), static_cast<std::int64_t>(entry.file_size())});
    }
    const velto::SystemClock clock;
    const auto contents = velto::makeFileContentReader();
    velto::PosixFileManager manager;
    velto::HomeLayout layout;
    if (count == 3) layout.dataFolder = arguments[2];
    const velto::DigestFile file(manager, layout);
    const auto known = count == 3 ? file.load() : nullptr;
    const auto result = velto::DupFinder(clock, *contents, 0, known.get()).find(files, {}, budget);
    if (known) file.save(*known);
    std::size_t copies = 0;
    for (const auto& group : result.groups)
        copies += group.paths.size();
    fmt::print("{} {}\n", result.groups.size(), copies);
    return result.budgetExhausted ? 1 : 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_duplicates: {}\n", error.what());
    return 1;
}
