// Makes a home to walk: `bench_make_home FOLDER FILES FOLDERS LARGEST-SMALL-FILE`. The same
// arguments make the same home. Space is claimed without being written.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace {

constexpr std::array<std::string_view, 14> topFolders{"Documents",
                                                      "Downloads",
                                                      "Pictures",
                                                      "Movies",
                                                      "Music",
                                                      "Desktop",
                                                      "Applications",
                                                      "Library/Caches",
                                                      "Library/Application Support",
                                                      "Library/Containers",
                                                      "Library/Preferences",
                                                      "Library/Logs",
                                                      "Library/Safari",
                                                      "Projects"};

constexpr std::array<std::string_view, 24> extensions{
    "txt", "jpg", "png", "heic", "mov", "mp4", "mp3", "m4a",  "pdf", "docx", "plist", "json",
    "js",  "ts",  "c",   "h",    "py",  "db",  "log", "html", "css", "zip",  "dmg",   ""};

constexpr int deepest = 14;
constexpr std::int64_t hugeFile = 320'000'000;  // shown among the big files
constexpr int hugeFiles = 4;

[[noreturn]] void fail(const std::string& path) {
    fmt::print(stderr, "bench_make_home: {}: {}\n", path, std::strerror(errno));
    std::exit(1);
}

class HomeMaker {
public:
    HomeMaker(std::string home, std::int64_t largestSmallFile)
        : home_(std::move(home)), largestSmallFile_(largestSmallFile) {}

    void make(int files, int folders) {
        folder(home_);
        folder(home_ + "/Library");
        for (std::string_view top : topFolders)
            add(home_ + "/" + std::string(top), 1);
        while (static_cast<int>(folders_.size()) < folders)
            addSomewhere();
        for (int index = 0; index < files; ++index)
            addFile(index);
    }

private:
    struct Made {
        std::string path;
        int depth;
    };

    unsigned upTo(std::size_t bound) { return static_cast<unsigned>(random_() % bound); }

    std::string name(std::string_view kind, unsigned number) {
        return fmt::format("{}{}{}", kind, std::string(upTo(14), 'n'), number);
    }

    void folder(const std::string& path) {
        if (::mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) fail(path);
    }

    void add(const std::string& path, int depth) {
        folder(path);
        folders_.push_back({path, depth});
    }

    void addSomewhere() {
        const Made& above = folders_[upTo(folders_.size())];
        if (above.depth >= deepest) return;
        const auto number = static_cast<unsigned>(folders_.size());
        add(above.path + "/" + name("folder ", number), above.depth + 1);
    }

    /// Most files lie anywhere, a third in a few crowded folders.
    const Made& someFolder() {
        const std::size_t crowded = std::min<std::size_t>(folders_.size(), 250);
        return folders_[upTo(3) == 0 ? upTo(crowded) : upTo(folders_.size())];
    }

    /// Mostly small; about three in a thousand worth comparing with others, nearly all of different
    /// sizes.
    std::int64_t someSize(int index) {
        if (index < hugeFiles) return hugeFile + index * 1'000'000;
        if (upTo(1000) < 3) return 1'001'472 + 4096 * static_cast<std::int64_t>(upTo(100));
        const std::int64_t largest = upTo(8) == 0 ? largestSmallFile_ : largestSmallFile_ / 8;
        return 1 + static_cast<std::int64_t>(
                       upTo(static_cast<std::size_t>(std::max<std::int64_t>(largest, 1))));
    }

    void addFile(int index) {
        std::string path = someFolder().path + "/" + name("file ", static_cast<unsigned>(index));
        const std::string_view extension = extensions[upTo(extensions.size())];
        if (!extension.empty()) path.append(1, '.').append(extension);
        const int file = ::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        if (file < 0) fail(path);
        errno = ::posix_fallocate(file, 0, someSize(index));
        if (errno != 0) fail(path);
        ::close(file);
    }

    std::string home_;
    std::int64_t largestSmallFile_;
    std::minstd_rand random_{20240229};
    std::vector<Made> folders_;
};

}  // namespace

int main(int count, char** arguments) {
    if (count != 5) {
        fmt::print(stderr, "usage: bench_make_home FOLDER FILES FOLDERS LARGEST-SMALL-FILE\n");
        return 2;
    }
    HomeMaker(arguments[1], std::atoll(arguments[4]))
        .make(std::atoi(arguments[2]), std::atoi(arguments[3]));
    return 0;
}
