// A move to another volume against copying and comparing: `bench_copy FOLDER OTHER ROUNDS`, two
// folders on different volumes. Prints one line a round, in milliseconds: moving one large file,
// cp and cmp of it, moving a folder of small files, cp and diff of it. Both folders are emptied
// before and after.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include <fmt/format.h>

#include "platform/posix/PosixFileManager.h"
#include "rounds.h"
#include "stopwatch.h"

namespace {

namespace fs = std::filesystem;

constexpr int megabytes = 256;
constexpr int smallFiles = 2'000;
constexpr int smallSize = 16'384;

/// No block like another, and none of zeros.
std::string bytes(std::size_t size, unsigned seed) {
    std::string text(size, '\0');
    for (char& byte : text) {
        seed = seed * 1'664'525U + 1'013'904'223U;
        byte = static_cast<char>(seed >> 24);
    }
    return text;
}

class Bench {
public:
    Bench(std::string from, std::string to) : from_(std::move(from)), to_(std::move(to)) {
        empty();
        fs::create_directories(from_);
        fs::create_directories(to_);
    }
    ~Bench() { empty(); }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    void makeFile() const {
        std::ofstream file(from_ + "/item", std::ios::binary);
        for (unsigned index = 0; index < megabytes; ++index)
            file << bytes(1 << 20, index);
    }

    void makeFolder() const {
        for (unsigned index = 0; index < smallFiles; ++index) {
            const std::string folder = fmt::format("{}/item/{}", from_, index % 50);
            fs::create_directories(folder);
            std::ofstream(fmt::format("{}/{}", folder, index), std::ios::binary)
                << bytes(smallSize, index);
        }
    }

    double move() {
        const auto from = files_.openFolder(from_, velto::FolderPath::throughLinks);
        const auto to = files_.openFolder(to_, velto::FolderPath::throughLinks);
        const double time = velto::milliseconds(
            [&] { files_.moveInSteps(*from, "item", *to, "moved", ".velto-bench"); });
        if (fs::exists(from_ + "/item")) throw std::runtime_error("not moved");
        fs::remove_all(to_ + "/moved");
        return time;
    }

    /// Neither waits for the disk nor removes anything, as the move does.
    double copyAndCompare(const std::string& compare) const {
        const std::string copy =
            fmt::format("cp -a {0}/item {1}/moved && {2} {0}/item {1}/moved", from_, to_, compare);
        int result = 0;
        const double time = velto::milliseconds([&] { result = std::system(copy.c_str()); });
        if (result != 0) throw std::runtime_error(copy);
        fs::remove_all(to_ + "/moved");
        return time;
    }

private:
    void empty() const {
        fs::remove_all(from_);
        fs::remove_all(to_);
    }

    std::string from_;
    std::string to_;
    velto::PosixFileManager files_;
};

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        fmt::print(stderr, "usage: bench_copy FOLDER OTHER ROUNDS\n");
        return 2;
    }
    return velto::printRounds(arguments[3], [&] {
        Bench bench(arguments[1], arguments[2]);
        bench.makeFile();
        const double fileTools = bench.copyAndCompare("cmp");
        const double fileMove = bench.move();
        bench.makeFolder();
        const double folderTools = bench.copyAndCompare("diff -r");
        return std::array{fileMove, fileTools, bench.move(), folderTools};
    });
}
