// A move to another volume against copying and comparing: `bench_copy FOLDER OTHER ROUNDS`, two
// folders on different volumes. Prints one line a round, in milliseconds: moving one large file,
// cp and cmp of it, the same with the copy written to the disk and read from there, and these three
// for a folder of small files (with diff). Both folders are emptied before and after.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <fmt/format.h>

#include "platform/posix/FileCalls.h"
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

    enum class Copy { inMemory, onDisk };

    /// Removes nothing, as the move does.
    double copyAndCompare(const std::string& compare, Copy where) {
        const double time = velto::milliseconds([&] {
            run(fmt::format("cp -a {}/item {}/moved", from_, to_));
            if (where == Copy::onDisk) leaveMemory(to_ + "/moved");
            run(fmt::format("{} {}/item {}/moved", compare, from_, to_));
        });
        fs::remove_all(to_ + "/moved");
        return time;
    }

private:
    static void run(const std::string& command) {
        if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
    }

    void leaveMemory(const std::string& copy) {
        if (fs::is_regular_file(copy)) return writeAndForget(copy);
        for (const auto& entry : fs::recursive_directory_iterator(copy)) {
            if (entry.is_regular_file()) writeAndForget(entry.path());
        }
    }

    void writeAndForget(const std::string& file) {
        const velto::Descriptor opened(
            calls_.open(AT_FDCWD, file.c_str(), O_RDONLY | O_CLOEXEC, 0));
        if (!opened.isOpen() || calls_.sync(opened.number()) != 0)
            throw std::runtime_error("cannot sync " + file);
        calls_.dropCache(opened.number());
    }

    void empty() const {
        fs::remove_all(from_);
        fs::remove_all(to_);
    }

    std::string from_;
    std::string to_;
    velto::PosixFileManager files_;
    velto::FileCalls calls_;
};

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        fmt::print(stderr, "usage: bench_copy FOLDER OTHER ROUNDS\n");
        return 2;
    }
    return velto::printRounds(arguments[3], [&] {
        Bench bench(arguments[1], arguments[2]);
        using Copy = Bench::Copy;
        bench.makeFile();
        const double fileTools = bench.copyAndCompare("cmp", Copy::inMemory);
        const double fileOnDisk = bench.copyAndCompare("cmp", Copy::onDisk);
        const double fileMove = bench.move();
        bench.makeFolder();
        const double folderTools = bench.copyAndCompare("diff -r", Copy::inMemory);
        const double folderOnDisk = bench.copyAndCompare("diff -r", Copy::onDisk);
        return std::array{fileMove, fileTools, fileOnDisk, bench.move(), folderTools, folderOnDisk};
    });
}
