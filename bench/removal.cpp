// Removing: `bench_removal FOLDER ROUNDS`. Prints one line a round, in milliseconds: moving 1,000
// files to the trash in one operation, renaming as many into another folder and no more, deleting
// a folder of 5,000 files in 250 folders for good, and `rm -rf` of one that is the same. The
// folder is emptied before and after.
#include <array>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>

#include "cleaning/VeltoTrashService.h"
#include "platform/Clock.h"
#include "platform/posix/PosixFileManager.h"
#include "rounds.h"
#include "stopwatch.h"

namespace {

namespace fs = std::filesystem;

constexpr int moved = 1'000;
constexpr int folders = 250;
constexpr int filesInFolder = 20;

void makeFile(const std::string& path) {
    std::FILE* const file = std::fopen(path.c_str(), "w");
    if (file == nullptr) throw std::runtime_error("cannot make " + path);
    std::fclose(file);
}

std::vector<std::string> makeFiles(const std::string& folder) {
    fs::create_directories(folder);
    std::vector<std::string> paths;
    for (int number = 0; number < moved; ++number) {
        paths.push_back(fmt::format("{}/file {}.txt", folder, number));
        makeFile(paths.back());
    }
    return paths;
}

void makeTree(const std::string& top) {
    for (int folder = 0; folder < folders; ++folder) {
        const std::string path = fmt::format("{}/folder {}", top, folder);
        fs::create_directories(path);
        for (int number = 0; number < filesInFolder; ++number) {
            makeFile(fmt::format("{}/file {}.txt", path, number));
        }
    }
}

void removeWithRm(const std::string& path) {
    std::string program = "rm";
    std::string options = "-rf";
    std::string end = "--";
    std::string operand = path;
    const std::array<char*, 5> arguments = {program.data(), options.data(), end.data(),
                                            operand.data(), nullptr};
    pid_t child = 0;
    int status = 0;
    if (posix_spawnp(&child, "rm", nullptr, nullptr, arguments.data(), environ) != 0 ||
        waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error("rm does not remove " + path);
    }
}

class Bench {
public:
    explicit Bench(const std::string& folder) : folder_(folder) { fs::remove_all(folder); }
    ~Bench() { fs::remove_all(folder_); }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    double moveToTrash() {
        const std::vector<std::string> paths = makeFiles(folder_ + "/Downloads");
        velto::VeltoTrashService trash(files_, files_, clock_, log_, layout_);
        return velto::milliseconds([&] { trash.moveToTrash(paths, "wind"); });
    }

    double rename() {
        const std::vector<std::string> paths = makeFiles(folder_ + "/from");
        const std::string target = folder_ + "/to/";
        fs::create_directories(target);
        return velto::milliseconds([&] {
            for (const std::string& path : paths) {
                fs::rename(path, target + fs::path(path).filename().string());
            }
        });
    }

    double deleteForGood() {
        const std::string top = folder_ + "/Downloads/large";
        makeTree(top);
        velto::VeltoTrashService trash(files_, files_, clock_, log_, layout_);
        const velto::Operation operation = trash.moveToTrash({top}, "wind");
        const double time =
            velto::milliseconds([&] { trash.deletePermanently(operation.items.front().id); });
        if (fs::exists(layout_.trashFolder + "/" + operation.id)) {
            throw std::runtime_error("not deleted: " + top);
        }
        return time;
    }

    double rm() {
        const std::string top = folder_ + "/twin";
        makeTree(top);
        return velto::milliseconds([&] { removeWithRm(top); });
    }

private:
    std::string folder_;
    velto::HomeLayout layout_ = velto::HomeLayout::macOS(folder_);
    velto::PosixFileManager files_;
    velto::SystemClock clock_;
    velto::SilentLog log_;
};

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        fmt::print(stderr, "usage: bench_removal FOLDER ROUNDS\n");
        return 2;
    }
    return velto::printRounds(arguments[2], [&] {
        Bench bench(arguments[1]);
        const double move = bench.moveToTrash();
        const double rename = bench.rename();
        const double deletion = bench.deleteForGood();
        return std::array{move, rename, deletion, bench.rm()};
    });
}
