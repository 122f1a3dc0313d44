// Makes files of 64 MiB to compare, as versions of disk images are kept: `bench_make_images FOLDER
// GIGABYTES`. Families of eight, named for their family and version, all of one length and with the
// same first 4096 bytes. Version 0 is the family's image. Of each family of ten one has an exact
// copy of it as version 7. Every other version is as version 0 up to a place drawn by its logarithm
// between 4 KiB and 64 MiB, and from there on 64 bytes in each MiB are others, at a drawn place.
// Nothing is sparse: every byte is random and written.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <span>
#include <vector>

#include <fmt/format.h>

namespace {

constexpr std::size_t mebibyte = 1024 * 1024;
constexpr std::size_t fileBytes = 64 * mebibyte;
constexpr std::size_t commonBytes = 4096;
constexpr std::size_t changedWords = 8;
constexpr int versions = 8;
constexpr int familiesToACopy = 10;

using Content = std::vector<std::uint64_t>;

Content randomContent(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    Content words(fileBytes / sizeof(std::uint64_t));
    std::ranges::generate(words, random);
    std::fill_n(words.begin(), commonBytes / sizeof(std::uint64_t), 1);
    return words;
}

/// Changes the content from a drawn place on.
void change(Content& content, std::mt19937_64& random) {
    std::uniform_real_distribution<double> octave(std::log2(commonBytes), std::log2(fileBytes));
    const auto first = static_cast<std::size_t>(std::exp2(octave(random)));
    std::uniform_int_distribution<std::size_t> within(0, mebibyte - changedWords * 8);
    for (std::size_t start = first; start + mebibyte <= fileBytes || start == first;
         start += mebibyte) {
        const std::size_t place =
            start == first ? std::min(start, fileBytes - changedWords * 8) : start + within(random);
        for (std::size_t word = 0; word < changedWords; ++word)
            content[place / 8 + word] = random();
    }
}

void write(const std::filesystem::path& path, const Content& content) {
    std::ofstream file(path, std::ios::binary);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file.write(reinterpret_cast<const char*>(content.data()), fileBytes);
}

}  // namespace

int main(int count, char** arguments) {
    const double gigabytes = count == 3 ? std::atof(arguments[2]) : 0;
    if (gigabytes <= 0) {
        fmt::print(stderr, "usage: bench_make_images FOLDER GIGABYTES\n");
        return 2;
    }
    const std::filesystem::path folder = arguments[1];
    std::filesystem::create_directories(folder);
    const auto families = static_cast<int>(gigabytes * 1e9 / (versions * fileBytes));
    for (int family = 0; family < families; ++family) {
        std::mt19937_64 random(static_cast<std::uint64_t>(family));
        const Content image = randomContent(1000 + static_cast<std::uint64_t>(family));
        for (int version = 0; version < versions; ++version) {
            const bool isCopy = version == 7 && family % familiesToACopy == 0;
            Content content = image;
            if (version > 0 && !isCopy) change(content, random);
            write(folder / fmt::format("image {} version {}.raw", family, version), content);
        }
    }
    return 0;
}
