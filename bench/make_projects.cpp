// Makes a developer's home: `bench_make_projects HOME FILES`. Of the files three in four lie in
// what rules name (node_modules and target of projects, npm's cache, Cargo's registry), the rest in
// sources, eight folders deep at most. All of it was changed 200 days ago. Space is claimed without
// being written.
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>

#include <fmt/format.h>

namespace {

using std::filesystem::path;

constexpr int filesPerFolder = 20;
constexpr int filesPerProject = 2'000;
constexpr int foldersPerGroup = 25;
constexpr std::uintmax_t fileSize = 6'000;
constexpr std::time_t age = 200 * 86'400;

void setOld(const path& item) {
    const std::time_t date = std::time(nullptr) - age;
    const timespec times[2] = {{.tv_sec = date, .tv_nsec = 0}, {.tv_sec = date, .tv_nsec = 0}};
    utimensat(AT_FDCWD, item.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

void write(const path& file, std::uintmax_t size) {
    std::ofstream stream(file, std::ios::binary);
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream.close();
    std::filesystem::resize_file(file, size);
    setOld(file);
}

void fill(const path& folder, int files) {
    for (int number = 0; files > 0; ++number) {
        const path place =
            folder / fmt::format("g{}", number / foldersPerGroup) / fmt::format("f{}", number);
        std::filesystem::create_directories(place);
        for (int file = 0; file < filesPerFolder && files > 0; ++file, --files)
            write(place / fmt::format("{}.js", file), fileSize);
    }
}

void setFoldersOld(const path& home) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home)) {
        if (entry.is_directory()) setOld(entry.path());
    }
}

}  // namespace

int main(int count, char** arguments) try {
    if (count != 3) {
        fmt::print(stderr, "usage: bench_make_projects HOME FILES\n");
        return 2;
    }
    const path home = arguments[1];
    const int files = std::atoi(arguments[2]);
    const int projects = std::max(1, files / 2 / filesPerProject);
    for (int number = 0; number < projects; ++number) {
        const path project =
            home / "work" / fmt::format("team{}", number % 7) / fmt::format("p{}", number);
        std::filesystem::create_directories(project);
        const bool isNode = number % 2 == 0;
        write(project / (isNode ? "package.json" : "Cargo.toml"), fileSize);
        fill(project / "src", filesPerProject / 4);
        fill(project / (isNode ? "node_modules" : "target"), filesPerProject * 3 / 4);
    }
    fill(home / ".npm" / "_cacache", files / 4);
    fill(home / ".cargo" / "registry" / "src", files / 8);
    fill(home / "Documents", files / 8);
    setFoldersOld(home);
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_make_projects: {}\n", error.what());
    return 1;
}
