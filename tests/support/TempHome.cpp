#include "support/TempHome.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <vector>

namespace velto {
namespace {

void require(bool succeeded, const std::string& what) {
    if (succeeded) return;
    std::perror(("made home: " + what).c_str());
    std::abort();
}

}  // namespace

TempHome::TempHome() : TempHome(std::filesystem::temp_directory_path().string()) {}

TempHome::TempHome(const std::string& parent) {
    std::string pattern = parent + "/velto-test-XXXXXX";
    require(mkdtemp(pattern.data()) != nullptr, pattern);
    root_ = std::filesystem::canonical(pattern);
}

TempHome::~TempHome() {
    std::error_code ignored;  // a test may have taken permissions away; the next boot clears /tmp
    std::filesystem::remove_all(root_, ignored);
}

const TempHome::File& TempHome::File::lastUsed(double secondsAgo) const {
    const auto then = std::time(nullptr) - static_cast<std::time_t>(secondsAgo);
    return dated(then, then);
}

const TempHome::File& TempHome::File::dated(std::int64_t accessed, std::int64_t modified) const {
    const timeval times[2] = {{static_cast<std::time_t>(accessed), 0},
                              {static_cast<std::time_t>(modified), 0}};
    require(utimes(path_.c_str(), times) == 0, path_);
    return *this;
}

TempHome::File TempHome::file(std::string_view relative, std::int64_t bytes) {
    // Repeating a short block of the name's own keeps contents apart and writing fast.
    const std::size_t seed = std::hash<std::string_view>{}(relative);
    std::vector<char> block(64 * 1024);
    for (std::size_t index = 0; index < block.size(); ++index) {
        block[index] = static_cast<char>((seed >> (index % 8 * 8)) ^ index);
    }
    const std::string target = path(relative);
    std::filesystem::create_directories(std::filesystem::path(target).parent_path());
    const int file = open(target.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0644);
    require(file >= 0, target);
    for (std::int64_t left = bytes; left > 0;) {
        const auto length = std::min<std::int64_t>(left, static_cast<std::int64_t>(block.size()));
        require(write(file, block.data(), static_cast<std::size_t>(length)) == length, target);
        left -= length;
    }
    require(close(file) == 0, target);
    return File(target);
}

TempHome::File TempHome::sparse(std::string_view relative, std::int64_t bytes) {
    File made = text(relative, "");
    require(truncate(made.path().c_str(), bytes) == 0, made.path());
    return made;
}

TempHome::File TempHome::text(std::string_view relative, std::string_view content) {
    const std::string target = path(relative);
    std::filesystem::create_directories(std::filesystem::path(target).parent_path());
    std::ofstream stream(target, std::ios::binary | std::ios::trunc);
    stream << content;
    stream.close();
    require(stream.good(), target);
    return File(target);
}

std::string TempHome::folder(std::string_view relative) {
    std::filesystem::create_directories(path(relative));
    return path(relative);
}

void TempHome::link(std::string_view relative, std::string_view target) {
    const std::string place = path(relative);
    std::filesystem::create_directories(std::filesystem::path(place).parent_path());
    require(symlink(std::string(target).c_str(), place.c_str()) == 0, place);
}

bool TempHome::exists(std::string_view relative) const {
    struct stat status {};
    return lstat(path(relative).c_str(), &status) == 0;
}

std::string TempHome::read(std::string_view relative) const {
    std::ifstream stream(path(relative), std::ios::binary);
    require(stream.good(), path(relative));
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace velto
