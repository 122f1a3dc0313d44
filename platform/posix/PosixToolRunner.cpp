#include "platform/posix/PosixToolRunner.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <mutex>
#include <optional>
#include <system_error>

#include "platform/posix/Descriptor.h"
#include "platform/posix/uninterrupted.h"

extern char** environ;

namespace velto {
namespace {

constexpr int exitCheckInterval = 100;  // milliseconds, only while the tool's output stays open
constexpr std::size_t mostOutput = 4 * 1024 * 1024;  // bytes that are kept

class SpawnActions {
public:
    SpawnActions() { posix_spawn_file_actions_init(&actions_); }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    posix_spawn_file_actions_t* get() { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// The tool starts with no signal blocked or ignored, whatever this program does with its own.
class SpawnAttributes {
public:
    SpawnAttributes() {
        posix_spawnattr_init(&attributes_);
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        sigdelset(&all, SIGKILL);
        sigdelset(&all, SIGSTOP);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

struct Child {
    pid_t process;
    Descriptor output;  // of the stream that is captured
};

/// 0 or an error number.
int openPipe(Descriptor& reader, Descriptor& writer) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) return errno;
    reader = Descriptor(ends[0]);
    writer = Descriptor(ends[1]);
    for (int end : ends) {
        if (fcntl(end, F_SETFD, FD_CLOEXEC) != 0) return errno;
    }
    return fcntl(ends[0], F_SETFL, O_NONBLOCK) == 0 ? 0 : errno;
}

/// As the system wants a list of texts; they are only read.
std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

/// 0 or an error number. Of the tool's standard streams `captured` comes through the child's pipe;
/// the others are the null device.
int spawn(int captured, const std::string& path, const std::vector<std::string>& arguments,
          const std::vector<std::string>& environment, Child& child) {
    std::vector<std::string> texts{path};
    texts.insert(texts.end(), arguments.begin(), arguments.end());

    // A pipe gets its close-on-exec mark in a second step; a tool that another thread started in
    // between would hold the writing end open.
    static std::mutex oneAtATime;
    const std::lock_guard lock(oneAtATime);
    Descriptor writer;
    if (const int error = openPipe(child.output, writer); error != 0) return error;
    SpawnActions actions;
    const SpawnAttributes attributes;
    int error = posix_spawn_file_actions_adddup2(actions.get(), writer.number(), captured);
    for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (error != 0) break;
        if (stream == captured) continue;
        error = posix_spawn_file_actions_addopen(actions.get(), stream, "/dev/null", O_RDWR, 0);
    }
    if (error != 0) return error;
    return posix_spawn(&child.process, path.c_str(), actions.get(), attributes.get(),
                       pointersTo(texts).data(), pointersTo(environment).data());
}

enum class ReadEnd { open, closed };

/// Appends what waits in the pipe, not more of it at once than a tool that never stops writing can
/// be kept waiting for.
ReadEnd drain(int pipe, std::string& text) {
    std::array<char, 16 * 1024> buffer;
    constexpr int mostParts = 64;
    for (int part = 0; part < mostParts; ++part) {
        const ssize_t count =
            uninterrupted([&] { return read(pipe, buffer.data(), buffer.size()); });
        if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return ReadEnd::open;
        if (count <= 0) return ReadEnd::closed;
        const std::size_t room = mostOutput - std::min(text.size(), mostOutput);
        text.append(buffer.data(), std::min(room, static_cast<std::size_t>(count)));
    }
    return ReadEnd::open;
}

/// The wait status once the tool has ended; nothing while it runs and `flags` say not to wait.
std::optional<int> waitFor(pid_t process, int flags) {
    int status = 0;
    const pid_t ended = uninterrupted([&] { return waitpid(process, &status, flags); });
    if (ended == 0) return std::nullopt;
    // Fails only when something else has collected the process; its status then is lost.
    return ended == process ? status : -1;
}

int exitStatusOf(int status) {
    if (status == -1) return -1;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

PosixToolRunner::PosixToolRunner(std::chrono::milliseconds limit) : limit_(limit) {
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        environment_.emplace_back(*variable);
    }
}

ToolResult PosixToolRunner::run(const std::string& path,
                                const std::vector<std::string>& arguments) {
    return runCapturing(STDERR_FILENO, path, arguments);
}

ToolResult PosixToolRunner::read(const std::string& path,
                                 const std::vector<std::string>& arguments) {
    return runCapturing(STDOUT_FILENO, path, arguments);
}

ToolResult PosixToolRunner::runCapturing(int stream, const std::string& path,
                                         const std::vector<std::string>& arguments) {
    ToolResult result;
    std::string& text = stream == STDERR_FILENO ? result.standardError : result.standardOutput;
    Child child{};
    if (const int error = spawn(stream, path, arguments, environment_, child); error != 0) {
        result.startError = std::generic_category().message(error);
        return result;
    }
    result.started = true;
    const int pipe = child.output.number();
    const auto end = std::chrono::steady_clock::now() + limit_;
    std::optional<int> status;
    bool isOpen = true;
    while (!status && std::chrono::steady_clock::now() < end) {
        pollfd waited{.fd = isOpen ? pipe : -1, .events = POLLIN, .revents = 0};
        poll(&waited, 1,
             isOpen ? exitCheckInterval : 5);  // interrupted or not: both questions are asked below
        // Asked before reading: what a tool that has ended wrote is in the pipe by now.
        status = waitFor(child.process, WNOHANG);
        if (isOpen) isOpen = drain(pipe, text) == ReadEnd::open;
    }
    // Before the pipe is closed, which would end a tool that writes in its own way.
    if (!status) kill(child.process, SIGKILL);
    child.output = Descriptor();
    result.exitStatus = exitStatusOf(status ? *status : *waitFor(child.process, 0));
    return result;
}

}  // namespace velto
