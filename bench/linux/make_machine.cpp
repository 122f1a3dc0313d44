// Makes a home as real machines have them: `bench_make_machine FOLDER FILES`. The same number makes
// the same home, and a larger one begins as a smaller one. Space is claimed without being written,
// about 0.7 MB a file, so the volume has to be able to claim as much.
//
// Number of files in a folder, growth of the tree and sizes follow the parameters that Agrawal,
// Arpaci-Dusseau and Arpaci-Dusseau have fitted to the file systems of thousands of machines
// ("Generating Realistic Impressions for File-System Benchmarking", FAST 2009, Table 2).
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numbers>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace {

constexpr std::array<std::string_view, 14> topFolders{
    "Documents",    "Downloads",      "Pictures",           "Movies",
    "Music",        "Desktop",        "Applications",       "Library/Application Support",
    "Projects",     "Library/Caches", "Library/Containers", "Library/Preferences",
    "Library/Logs", "Library/Safari"};

constexpr std::array<std::string_view, 16> extensions{"",    "cpp", "h",     "gif", "htm",  "jpg",
                                                      "txt", "dll", "png",   "js",  "json", "py",
                                                      "pdf", "mov", "plist", "log"};

constexpr double filesOffset = 2.36;    // of 1 / (n + offset)^2, the share of folders of n files
constexpr double mostFiles = 10'000;    // in one folder; without a bound there would be no mean
constexpr double logarithmMean = 9.48;  // of a size in bytes
constexpr double logarithmDeviation = 2.46;
constexpr double largeShare = 6e-5;  // of the files; their sizes follow a Pareto distribution
constexpr double largeLeast = 512e6;
constexpr double largeExponent = 0.91;
constexpr double largest = 64e9;  // that distribution has no mean either

[[noreturn]] void fail(const std::string& path) {
    fmt::print(stderr, "bench_make_machine: {}: {}\n", path, std::strerror(errno));
    std::exit(1);
}

class MachineMaker {
public:
    explicit MachineMaker(std::string home) : home_(std::move(home)) {}

    void make(std::int64_t files) {
        makeFolder(home_);
        makeFolder(home_ + "/Library");
        left_ = files;
        for (std::string_view top : topFolders)
            fill(home_ + "/" + std::string(top));
        while (left_ > 0)
            fillSomewhere();
    }

private:
    double share() { return (static_cast<double>(random_()) + 0.5) / 0x1p64; }
    std::size_t upTo(std::size_t bound) { return random_() % bound; }

    static void makeFolder(const std::string& path) {
        if (::mkdir(path.c_str(), 0755) != 0) fail(path);
    }

    /// A folder gets a new one below it the more easily the more it has: by their number plus two.
    void fillSomewhere() {
        const std::uint32_t above = draws_[upTo(draws_.size())];
        draws_.push_back(above);
        fill(folders_[above] + "/" + name("folder "));
    }

    void fill(const std::string& path) {
        const auto number = static_cast<std::uint32_t>(folders_.size());
        folders_.push_back(path);
        draws_.insert(draws_.end(), {number, number});
        makeFolder(path);
        const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder < 0) fail(path);
        const double wanted = filesOffset * (1 / share() - 1);
        for (auto count = static_cast<int>(std::min(wanted, mostFiles)); count > 0 && left_ > 0;
             --count, --left_)
            addFile(folder, path);
        ::close(folder);
    }

    void addFile(int folder, const std::string& path) {
        std::string file = name("file ");
        const std::string_view extension = extensions[upTo(extensions.size())];
        if (!extension.empty()) file.append(1, '.').append(extension);
        const std::int64_t size = someSize();
        const int made =
            ::openat(folder, file.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
        if (made < 0) fail(path + "/" + file);
        if (size > 0 && ::fallocate(made, 0, 0, size) != 0) fail(path + "/" + file);
        ::close(made);
    }

    std::string name(std::string_view kind) {
        return fmt::format("{}{}{}", kind, std::string(upTo(14), 'n'), ++names_);
    }

    std::int64_t someSize() {
        if (share() < largeShare) {
            return static_cast<std::int64_t>(
                std::min(largest, largeLeast * std::pow(share(), -1 / largeExponent)));
        }
        // Two uniform numbers make a normal one (Box and Muller).
        const double length = std::sqrt(-2 * std::log(share()));
        const double normal = length * std::cos(2 * std::numbers::pi * share());
        return static_cast<std::int64_t>(
            std::min(largeLeast, std::exp(logarithmMean + logarithmDeviation * normal)));
    }

    std::string home_;
    std::int64_t left_ = 0;
    std::int64_t names_ = 0;
    std::mt19937_64 random_{20240229};
    std::vector<std::string> folders_;
    std::vector<std::uint32_t> draws_;  // each folder as often as its weight
};

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        fmt::print(stderr, "usage: bench_make_machine FOLDER FILES\n");
        return 2;
    }
    MachineMaker(arguments[1]).make(std::atoll(arguments[2]));
    return 0;
}
