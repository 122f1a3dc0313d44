#include "platform/linux/IconWorkers.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <span>
#include <utility>

#include "platform/linux/icon_protocol.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/uninterrupted.h"

extern char** environ;

namespace velto {
namespace {

constexpr std::size_t mostWorkers = 2;
constexpr std::size_t mostStopped = 8;  // pictures

using Time = std::chrono::steady_clock::time_point;

/// 0 or an error number. The worker gets the socket, and nothing else that this program has open.
int spawn(const std::string& program, int socket, pid_t& process) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    sigdelset(&all, SIGKILL);
    sigdelset(&all, SIGSTOP);
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    int error = 0;
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO}) {
        if (error == 0) error = posix_spawn_file_actions_adddup2(&actions, socket, stream);
    }
    if (error == 0) {
        error = posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    }
    std::string name = program;
    const std::array<char*, 2> arguments{name.data(), nullptr};
    if (error == 0) {
        error = posix_spawn(&process, program.c_str(), &actions, &attributes, arguments.data(),
                            environ);
    }
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

/// False when it is too late.
bool waitFor(int socket, short event, Time end) {
    using std::chrono::milliseconds;
    while (true) {
        const auto left =
            std::chrono::duration_cast<milliseconds>(end - std::chrono::steady_clock::now());
        pollfd waited{.fd = socket, .events = event, .revents = 0};
        const int ready =
            poll(&waited, 1, static_cast<int>(std::max(left, milliseconds{0}).count()));
        if (ready > 0) return true;
        if (ready == 0 || errno != EINTR) return false;
    }
}

bool hasFailed(ssize_t count) { return count == 0 || (count < 0 && errno != EAGAIN); }

bool sendAll(int socket, std::string_view bytes, Time end) {
    while (!bytes.empty()) {
        if (!waitFor(socket, POLLOUT, end)) return false;
        const ssize_t count = uninterrupted(
            [&] { return send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT); });
        if (hasFailed(count)) return false;
        if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool receiveAll(int socket, std::span<char> buffer, Time end) {
    while (!buffer.empty()) {
        if (!waitFor(socket, POLLIN, end)) return false;
        const ssize_t count =
            uninterrupted([&] { return recv(socket, buffer.data(), buffer.size(), MSG_DONTWAIT); });
        if (hasFailed(count)) return false;
        if (count > 0) buffer = buffer.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

template <typename Record>
std::string_view bytesOf(const Record& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

}  // namespace

/// One process, in the hands of one thread at a time.
class IconWorkers::Worker {
public:
    explicit Worker(const std::string& program) {
        std::array<int, 2> ends{};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return;
        socket_ = Descriptor(ends[0]);
        const Descriptor theirs(ends[1]);
        if (spawn(program, theirs.number(), process_) != 0) process_ = -1;
    }
    ~Worker() { end(); }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    bool runs() const { return process_ > 0; }

    /// After an answer that the worker did not give, it is gone.
    Answer draw(std::string_view file, std::uint32_t pixels, Time end, std::string& png) {
        const IconRequest request{.pixels = pixels,
                                  .length = static_cast<std::uint32_t>(file.size())};
        IconReply reply{};
        if (!sendAll(socket_.number(), bytesOf(request), end) ||
            !sendAll(socket_.number(), file, end) ||
            !receiveAll(socket_.number(), {reinterpret_cast<char*>(&reply), sizeof reply}, end)) {
            return endedByItself() ? Answer::ended : Answer::stopped;
        }
        if (reply.length == 0) return Answer::none;
        if (reply.length > longestReply(pixels)) return stop();
        png.resize(reply.length);
        if (!receiveAll(socket_.number(), png, end)) return stop();
        constexpr std::string_view signature = "\x89PNG\r\n\x1a\n";
        return png.starts_with(signature) ? Answer::drawn : stop();
    }

private:
    Answer stop() {
        end();
        return Answer::stopped;
    }

    /// True when it had nothing to do for a while and has gone, as it may.
    bool endedByItself() {
        const int status = end();
        return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
    }

    /// The wait status: how it has ended, which is by this call unless it was on its way before.
    int end() {
        const pid_t process = std::exchange(process_, -1);
        if (process <= 0) return -1;
        kill(process, SIGKILL);
        int status = -1;
        uninterrupted([&] { return waitpid(process, &status, 0); });
        return status;
    }

    Descriptor socket_;
    pid_t process_ = -1;
};

IconWorkers::IconWorkers(std::string program, std::chrono::milliseconds patience)
    : program_(std::move(program)), patience_(patience) {}

IconWorkers::~IconWorkers() = default;

std::unique_ptr<IconWorkers::Worker> IconWorkers::take() {
    std::unique_lock lock(mutex_);
    returned_.wait(lock, [this] { return taken_ < mostWorkers; });
    ++taken_;
    if (idle_.empty()) return nullptr;
    auto worker = std::move(idle_.back());
    idle_.pop_back();
    return worker;
}

void IconWorkers::giveBack(std::unique_ptr<Worker> worker) {
    const std::lock_guard lock(mutex_);
    if (worker && worker->runs()) idle_.push_back(std::move(worker));
    --taken_;
    returned_.notify_one();
}

bool IconWorkers::mayDraw(std::size_t picture) const {
    const std::lock_guard lock(mutex_);
    return stopped_.size() < mostStopped && !stopped_.contains(picture);
}

std::optional<std::string> IconWorkers::png(std::string_view file, int pixels) {
    if (pixels <= 0 || static_cast<std::uint32_t>(pixels) > mostIconPixels || file.empty() ||
        file.size() > longestPicture) {
        return std::nullopt;
    }
    const std::size_t picture = std::hash<std::string_view>()(file);
    auto worker = take();
    Answer answer = Answer::ended;
    std::string drawn;
    // A worker that was there before may have ended by itself meanwhile; a new one has not.
    for (int attempt = 0; attempt < 2 && answer == Answer::ended && mayDraw(picture); ++attempt) {
        if (!worker || !worker->runs()) worker = std::make_unique<Worker>(program_);
        if (!worker->runs()) break;
        answer = worker->draw(file, static_cast<std::uint32_t>(pixels),
                              std::chrono::steady_clock::now() + patience_, drawn);
    }
    if (answer == Answer::stopped) {
        const std::lock_guard lock(mutex_);
        stopped_.insert(picture);
    }
    giveBack(std::move(worker));
    return answer == Answer::drawn ? std::optional(std::move(drawn)) : std::nullopt;
}

}  // namespace velto
