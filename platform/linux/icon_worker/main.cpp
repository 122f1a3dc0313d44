// velto-icons: draws the pictures of applications for velto, which starts it and ends it. Decoders
// of pictures are large, and the files may come from anyone: here they run under limits, without
// anything of the user's but the bytes that they are given.
#include <malloc.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <span>
#include <string>

#include "platform/linux/icon_protocol.h"
#include "platform/linux/icon_worker/draw_picture.h"
#include "platform/posix/uninterrupted.h"

namespace velto {
namespace {

[[maybe_unused]] constexpr rlim_t mostMemory =
    512 * 1024 * 1024;                 // address space, with all libraries
constexpr rlim_t mostFiles = 64;       // the decoders' own are files
constexpr rlim_t secondsAPicture = 2;  // of the processor, at most: they are whole
constexpr int idleTime = 20'000;       // milliseconds until it ends by itself

void limit(__rlimit_resource what, rlim_t most) {
    rlimit value{};
    if (getrlimit(what, &value) != 0) _exit(EXIT_FAILURE);
    value.rlim_max = std::min(value.rlim_max, most);
    value.rlim_cur = value.rlim_max;
    if (setrlimit(what, &value) != 0) _exit(EXIT_FAILURE);
}

void setLimits() {
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
    limit(RLIMIT_NOFILE, mostFiles);
#ifndef VELTO_WITHOUT_MEMORY_LIMIT
    limit(RLIMIT_AS, mostMemory);
#endif
    // Each thread of a decoder, and each heap of a thread, takes a large piece of address space.
    mallopt(M_ARENA_MAX, 1);
    setenv("RAYON_NUM_THREADS", "1", 1);
    std::signal(SIGXCPU, SIG_DFL);
}

/// The kernel ends the process when the next picture takes longer.
void limitTime() {
    rusage used{};
    rlimit value{};
    if (getrusage(RUSAGE_SELF, &used) != 0 || getrlimit(RLIMIT_CPU, &value) != 0) {
        _exit(EXIT_FAILURE);
    }
    const auto seconds = static_cast<rlim_t>(used.ru_utime.tv_sec + used.ru_stime.tv_sec);
    value.rlim_cur = std::min(value.rlim_max, seconds + secondsAPicture);
    if (setrlimit(RLIMIT_CPU, &value) != 0) _exit(EXIT_FAILURE);
}

/// Ends the process when the other side has gone.
void readAll(std::span<char> buffer) {
    while (!buffer.empty()) {
        const ssize_t count =
            uninterrupted([&] { return read(STDIN_FILENO, buffer.data(), buffer.size()); });
        if (count <= 0) _exit(EXIT_SUCCESS);
        buffer = buffer.subspan(static_cast<std::size_t>(count));
    }
}

void writeAll(std::span<const char> bytes) {
    while (!bytes.empty()) {
        const ssize_t count =
            uninterrupted([&] { return write(STDOUT_FILENO, bytes.data(), bytes.size()); });
        if (count < 0) _exit(EXIT_SUCCESS);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

void waitForRequest() {
    pollfd waited{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
    if (uninterrupted([&] { return poll(&waited, 1, idleTime); }) <= 0) _exit(EXIT_SUCCESS);
}

[[noreturn]] void serve() {
    while (true) {
        waitForRequest();
        IconRequest request{};
        readAll({reinterpret_cast<char*>(&request), sizeof request});
        if (request.pixels == 0 || request.pixels > mostIconPixels ||
            request.length > longestPicture) {
            _exit(EXIT_FAILURE);
        }
        std::string file(request.length, '\0');
        readAll(file);
        limitTime();
        const std::string png = drawPicture(file, static_cast<int>(request.pixels));
        const IconReply reply{.length = static_cast<std::uint32_t>(png.size())};
        writeAll({reinterpret_cast<const char*>(&reply), sizeof reply});
        writeAll(png);
    }
}

}  // namespace
}  // namespace velto

int main() {
    velto::setLimits();
    velto::serve();
}
