// Makes a home whose cache folder is full: `bench_make_caches HOME`. 20 caches of 10,000 files
// each, in 125 folders of up to three levels. Space is claimed without being written.
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <fmt/format.h>

namespace {

constexpr int caches = 20;
constexpr int groups = 5;            // folders inside a cache
constexpr int foldersPerGroup = 24;  // folders inside each of those
constexpr int filesPerFolder = 80;   // in each folder of both levels
constexpr std::uint64_t largest = 16'384;

void fill(const std::filesystem::path& folder, std::mt19937_64& random) {
    std::filesystem::create_directories(folder);
    for (int index = 0; index < filesPerFolder; ++index) {
        const auto file = folder / fmt::format("{:016x}.cache", random());
        std::ofstream stream(file, std::ios::binary);
        stream.exceptions(std::ios::failbit | std::ios::badbit);
        stream.close();
        // Enough for each cache to be worth cleaning: 80 MB on average.
        std::filesystem::resize_file(file, random() % largest);
    }
}

}  // namespace

int main(int count, char** arguments) try {
    if (count != 2) {
        fmt::print(stderr, "usage: bench_make_caches HOME\n");
        return 2;
    }
    std::mt19937_64 random(1);
    const auto folder = std::filesystem::path(arguments[1]) / "Library" / "Caches";
    for (int cache = 0; cache < caches; ++cache) {
        for (int group = 0; group < groups; ++group) {
            const auto path =
                folder / fmt::format("com.example.app{}", cache) / fmt::format("group {}", group);
            fill(path, random);
            for (int index = 0; index < foldersPerGroup; ++index) {
                fill(path / fmt::format("{:02x}", index), random);
            }
        }
    }
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_make_caches: {}\n", error.what());
    return 1;
}
