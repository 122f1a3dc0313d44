// Makes 1 GB of files to compare: `bench_make_duplicates FOLDER`. 20 groups of three identical
// 8 MiB files, and 60 files of the same size that begin with the same 4096 bytes and then differ.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace {

constexpr std::size_t fileBytes = 8 * 1024 * 1024;
constexpr std::size_t commonBytes = 4096;

std::vector<std::uint64_t> randomContent(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    std::vector<std::uint64_t> words(fileBytes / sizeof(std::uint64_t));
    std::ranges::generate(words, random);
    return words;
}

void write(const std::filesystem::path& path, const std::vector<std::uint64_t>& content) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file.write(reinterpret_cast<const char*>(content.data()), fileBytes);
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        fmt::print(stderr, "usage: bench_make_duplicates FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = arguments[1];
    for (std::uint64_t group = 0; group < 20; ++group) {
        const auto content = randomContent(1000 + group);
        for (int copy = 0; copy < 3; ++copy) {
            write(folder / fmt::format("copies {}", copy) / fmt::format("same {}.raw", group),
                  content);
        }
    }
    const auto common = randomContent(1);
    for (std::uint64_t index = 0; index < 60; ++index) {
        auto content = randomContent(2000 + index);
        std::copy_n(common.begin(), commonBytes / sizeof(std::uint64_t), content.begin());
        write(folder / "alike" / fmt::format("begins alike {}.raw", index), content);
    }
    return 0;
}
