// Opening folders: `bench_folders HOME ENTRIES RUNS` makes a folder of that many files in the home,
// walks it, and answers the page's question for that folder and for the thousand largest others.
// Prints milliseconds: the median and the 99th percentile of the runs for the one, of the others.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "analysis/PermissionService.h"
#include "analysis/ScannerService.h"
#include "bridge/folder_contents.h"
#include "linux/BenchPlatform.h"
#include "stopwatch.h"

namespace {

void makeEntries(const std::string& folder, int count) {
    ::mkdir(folder.c_str(), 0755);
    for (int index = 0; index < count; ++index) {
        const std::string path = fmt::format("{}/a file of the page {}.jpeg", folder, index);
        ::close(::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
    }
}

std::vector<std::string> largestFolders(const velto::FolderTree& tree, std::size_t count) {
    std::vector<velto::FolderTree::Index> indices(tree.size());
    std::iota(indices.begin(), indices.end(), 0U);
    std::ranges::sort(indices, [&](auto one, auto other) {
        return tree[one].own.ownFiles > tree[other].own.ownFiles;
    });
    std::vector<std::string> paths;
    for (std::size_t index = 0; index < std::min(count, indices.size()); ++index)
        paths.push_back(tree.path(indices[index]));
    return paths;
}

void print(std::vector<double> times) {
    std::ranges::sort(times);
    fmt::print("{:.2f} {:.2f}\n", times[times.size() / 2], times[times.size() * 99 / 100]);
}

}  // namespace

int main(int count, char** arguments) try {
    if (count != 4) {
        fmt::print(stderr, "usage: bench_folders HOME ENTRIES RUNS\n");
        return 2;
    }
    const auto platform = velto::benchPlatform(arguments[1]);
    const std::string many = platform->layout.home + "/Projects/many";
    makeEntries(many, std::atoi(arguments[2]));
    const velto::PermissionService permissions(*platform);
    velto::ScannerService scanner(*platform, permissions);
    scanner.scan({}, velto::CancellationFlag(), {});
    velto::MeasuredFolders measured;
    measured.tree = scanner.folders();

    const auto timed = [&](const std::string& path) {
        std::string answer;
        const double time = velto::milliseconds([&] {
            answer = velto::folderContents(*platform->directories, &measured, {1, path}, {});
        });
        if (answer.find(R"("found":true)") == std::string::npos) {
            throw std::runtime_error(path + " was not found");
        }
        return time;
    };
    std::vector<double> one, others;
    timed(many);
    for (int run = std::atoi(arguments[3]); run > 0; --run)
        one.push_back(timed(many));
    for (const std::string& path : largestFolders(*measured.tree, 1000)) {
        timed(path);
        others.push_back(timed(path));
    }
    std::filesystem::remove_all(many);  // the other benchmarks count the home's files
    print(one);
    print(others);
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_folders: {}\n", error.what());
    return 1;
}
