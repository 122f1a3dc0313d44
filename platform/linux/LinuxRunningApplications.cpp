#include "platform/linux/LinuxRunningApplications.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <set>

#include "platform/linux/ProcessDescriber.h"
#include "platform/linux/process_program.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/names_in_folder.h"

namespace velto {
namespace {

constexpr const char* proc = "/proc";

std::vector<std::int64_t> processes() {
    std::vector<std::int64_t> numbers;
    const auto names = namesInFolder(Descriptor(::open(proc, O_RDONLY | O_CLOEXEC)));
    if (!names) return numbers;
    for (const std::string& name : *names) {
        std::int64_t number = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
        if (error == std::errc() && end == name.data() + name.size()) numbers.push_back(number);
    }
    return numbers;
}

std::string executableOf(std::int64_t process) {
    return executableOfProcess(std::string(proc).append("/").append(std::to_string(process)));
}

/// Knows what runs now.
ProcessDescriber describer() {
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    return {proc, runtime == nullptr ? "" : runtime};
}

/// Holds the process itself where the kernel can (pidfd_open(2), Linux 5.3); elsewhere its number,
/// looked at once more before each signal.
class Control final : public ProcessControl {
public:
    Control(std::int64_t process, Descriptor handle, std::string executable)
        : process_(process), handle_(std::move(handle)), executable_(std::move(executable)) {}

    void terminate() override { send(SIGTERM); }
    void forceTerminate() override { send(SIGKILL); }

    bool isTerminated() override {
        if (!handle_.isOpen()) return executableOf(process_) != executable_;
        pollfd waited{.fd = handle_.number(), .events = POLLIN, .revents = 0};
        return ::poll(&waited, 1, 0) == 1;
    }

private:
    void send(int signal) {
        if (isTerminated()) return;
        if (handle_.isOpen()) {
            ::syscall(SYS_pidfd_send_signal, handle_.number(), signal, nullptr, 0);
        } else {
            ::kill(static_cast<pid_t>(process_), signal);
        }  // a refused signal shows in that the process goes on
    }

    std::int64_t process_;
    Descriptor handle_;
    std::string executable_;
};

}  // namespace

std::vector<RunningApplication> LinuxRunningApplications::list() {
    const ProcessDescriber now = describer();
    std::vector<RunningApplication> running;
    for (std::int64_t process : processes()) {
        std::string executable = executableOf(process);
        if (!executable.empty()) running.push_back(now.describe(process, std::move(executable)));
    }
    return running;
}

std::unique_ptr<ProcessControl> LinuxRunningApplications::control(
    const RunningApplication& application) {
    const pid_t process = static_cast<pid_t>(application.process);
    Descriptor handle(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
    if (!handle.isOpen() && errno == ESRCH) return nullptr;
    // Looked at after the handle was taken: if it still is that program, the handle is its.
    std::string executable = executableOf(application.process);
    if (executable.empty()) return nullptr;
    const ProcessDescriber now(proc, "");
    if (now.describeProgram(application.process, executable).executable != application.executable) {
        return nullptr;
    }
    return std::make_unique<Control>(application.process, std::move(handle), std::move(executable));
}

void LinuxRunningApplications::observe(std::function<void(const RunningApplication&)> used) {
    used_ = std::move(used);
    lookThrough(processes(), [](const RunningApplication&) {});
    lookLater();
}

void LinuxRunningApplications::lookLater() {
    dispatcher_.mainAfter(secondsBetweenLooks, [this, alive = std::weak_ptr<const bool>(alive_)] {
        if (alive.expired()) return;
        look();
        lookLater();
    });
}

void LinuxRunningApplications::look() {
    const auto numbers = processes();
    const std::set<std::int64_t> now(numbers.begin(), numbers.end());
    for (auto known = seen_.begin(); known != seen_.end();) {
        if (now.contains(known->first)) {
            ++known;
            continue;
        }
        // It was in use until just now.
        if (!known->second.executable.empty()) used_(known->second);
        known = seen_.erase(known);
    }
    lookThrough(numbers, used_);
}

/// Tells of what was not there at the last look. The main thread's: a process is not asked for what
/// it may be slow to give.
void LinuxRunningApplications::lookThrough(
    const std::vector<std::int64_t>& numbers,
    const std::function<void(const RunningApplication&)>& tell) {
    std::optional<ProcessDescriber> describes;  // made for something new alone
    for (std::int64_t process : numbers) {
        if (seen_.contains(process)) continue;
        if (!describes) describes.emplace(describer());
        std::string executable = executableOf(process);
        RunningApplication application;
        if (!executable.empty())
            application = describes->describeAtOnce(process, std::move(executable));
        // Kernel threads and other users' processes are remembered too, so as not to be asked
        // again.
        const auto added = seen_.emplace(process, std::move(application)).first;
        if (!added->second.executable.empty()) tell(added->second);
    }
}

}  // namespace velto
