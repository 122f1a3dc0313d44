#include "platform/linux/LinuxProcessTable.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <unordered_set>
#include <utility>

#include "platform/linux/kernel_file.h"
#include "platform/linux/process_program.h"
#include "platform/posix/uninterrupted.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::size_t longestCommand = 15;   // what the kernel keeps of a name
constexpr std::size_t longestStatus = 1024;  // of a stat file: a name and fifty numbers
constexpr std::uint64_t nanosecondsPerSecond = 1'000'000'000;
constexpr int mostAncestors = 16;  // looked at, of one process

/// A quarter of what the program may open.
std::size_t shareOfDescriptors() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 0;
    return static_cast<std::size_t>(std::min<rlim_t>(limit.rlim_cur, INT_MAX)) / 4;
}

std::optional<std::int32_t> processNumber(const std::string& name) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc() || end != name.data() + name.size() || number < 1) return std::nullopt;
    return number;
}

/// The kernel cuts names off; what the program's file is called completes it.
std::string fullName(std::string_view command, const std::string& executable) {
    const std::string_view file = lastPathComponent(executable);
    const bool isCut = command.size() == longestCommand && file.starts_with(command);
    return std::string(isCut ? file : command);
}

}  // namespace

struct LinuxProcessTable::Process {
    Descriptor file;
    std::string command;
    std::string name;
    std::string executable;
    const RunningApp* application = nullptr;
    bool isKnownByOwnUnit = false;  // only in that this program runs under the same unit
    std::int32_t parent = 0;
    std::uint64_t start = 0;
    std::uint64_t ticks = 0;
    // The footprint, and what it was read beside.
    std::uint64_t footprint = 0;
    std::uint64_t faults = 0;
    std::uint64_t resident = 0;
    std::optional<ProcessTraffic> traffic;
    bool isOwn = false;
    bool isDesktops = false;  // runs in the session's own part of the control groups
    bool isKnown = false;
    bool isListed = false;
};

LinuxProcessTable::LinuxProcessTable(Sources sources)
    : sources_(std::move(sources)),
      mostOpenFiles_(shareOfDescriptors()),
      nanosecondsPerTick_(static_cast<double>(nanosecondsPerSecond) /
                          static_cast<double>(::sysconf(_SC_CLK_TCK))),
      buffer_(longestStatus, '\0') {}

LinuxProcessTable::~LinuxProcessTable() = default;

std::string LinuxProcessTable::folderOf(std::int32_t number) const {
    return sources_.proc + "/" + std::to_string(number);
}

/// Points into `buffer_`.
std::optional<ProcessStatus> LinuxProcessTable::readStatus(std::int32_t number, Process& process) {
    Descriptor opened;
    if (!process.file.isOpen()) {
        const std::string path = folderOf(number) + "/stat";
        opened =
            Descriptor(uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
    }
    const Descriptor& file = process.file.isOpen() ? process.file : opened;
    const ssize_t length =
        uninterrupted([&] { return ::pread(file.number(), buffer_.data(), buffer_.size(), 0); });
    if (length <= 0) return std::nullopt;
    if (opened.isOpen() && openFiles_ < mostOpenFiles_) {
        process.file = std::move(opened);
        ++openFiles_;
    }
    return processStatusIn(std::string_view(buffer_.data(), static_cast<std::size_t>(length)));
}

/// False when the process has ended, or when its number is another one's by now.
bool LinuxProcessTable::update(std::int32_t number, Process& process) {
    const auto status = readStatus(number, process);
    if (!status || status->hasEnded()) return false;
    if (process.isKnown && status->start != process.start) return false;
    process.start = status->start;
    process.parent = status->parent;
    // Whoever moves bytes uses the processor or touches pages.
    const bool hasWorked =
        !process.isKnown || status->ticks != process.ticks || status->faults != process.faults;
    process.ticks = status->ticks;
    if (process.command != status->command) {
        process.command = status->command;
        identify(number, process);
    }
    // A process gains memory by faults, and what is swapped out is not resident any more: where
    // neither has changed, its memory has not.
    if (!process.isKnown || status->faults != process.faults ||
        status->resident != process.resident) {
        process.faults = status->faults;
        process.resident = status->resident;
        process.footprint = footprintIn(kernelText(folderOf(number) + "/status").value_or(""));
    }
    if (hasWorked) readTraffic(number, process);
    process.isKnown = true;
    return true;
}

void LinuxProcessTable::readTraffic(std::int32_t number, Process& process) const {
    if (!process.isOwn) return;
    const auto text = kernelText(folderOf(number) + "/io");
    process.traffic = text ? processTrafficIn(*text) : std::nullopt;
}

void LinuxProcessTable::identify(std::int32_t number, Process& process) {
    const std::string folder = folderOf(number);
    struct stat attributes {};
    process.isOwn = ::stat(folder.c_str(), &attributes) == 0 && attributes.st_uid == ::geteuid();
    process.executable = executableOfProcess(folder);
    process.name = fullName(process.command, process.executable);
    if (std::string image = appImageOfProcess(folder, process.executable); !image.empty()) {
        process.executable = std::move(image);
    }
    process.application = nullptr;
    process.isDesktops = false;
    process.isKnownByOwnUnit = false;
    if (index_) {
        const std::string group = kernelText(folder + "/cgroup").value_or("");
        const std::string script = scriptOfProcess(folder, process.executable);
        process.application = index_->find(group, process.executable, script);
        process.isDesktops = group.find("/session.slice/") != std::string::npos;
        process.isKnownByOwnUnit = !group.empty() && group == ownControlGroup_ &&
                                   index_->find("", process.executable, script) == nullptr;
    }
    if (process.application == nullptr) process.application = bundleApp(process.executable);
}

/// The application of the outermost bundle that holds the program; null when none does.
const RunningApp* LinuxProcessTable::bundleApp(const std::string& executable) {
    constexpr std::string_view inside = ".app/";
    const std::size_t end = executable.find(inside);
    if (end == std::string::npos) return nullptr;
    const std::string path = executable.substr(0, end + inside.size() - 1);
    auto& known = bundles_[path];
    if (known) return known.get();
    RunningApp app = sources_.bundle(path);
    app.path = path;
    app.isForPeople = true;
    // Every process of a bundle is known to be its, so that without an identifier its processes
    // would be as many applications.
    if (app.bundle.empty()) app.bundle = path;
    known = std::make_unique<const RunningApp>(std::move(app));
    return known.get();
}

void LinuxProcessTable::forgetUnusedBundles() {
    if (bundles_.empty()) return;
    std::unordered_set<const RunningApp*> used;
    for (const auto& [number, process] : processes_)
        used.insert(process.application);
    std::erase_if(bundles_,
                  [&](const auto& bundle) { return !used.contains(bundle.second.get()); });
}

void LinuxProcessTable::forget(Processes::iterator place) {
    if (place->second.file.isOpen()) --openFiles_;
    processes_.erase(place);
}

/// This program as its desktop entry shows it, where one is installed.
RunningApp LinuxProcessTable::ownApp() const {
    const RunningApp* const listed = index_ ? index_->identified(sources_.own.bundle) : nullptr;
    return listed == nullptr ? sources_.own : *listed;
}

/// What the web view has started to show the page, what draws the icons, and so on: all that runs
/// below this program and is not an application by itself.
bool LinuxProcessTable::isStartedByThisProgram(const Process& process) const {
    if (sources_.ownProcess == 0) return false;
    const Process* current = &process;
    for (int step = 0; step < mostAncestors; ++step) {
        if (current->application != nullptr && !current->isKnownByOwnUnit) return false;
        if (current->parent == sources_.ownProcess) return true;
        const auto parent = processes_.find(current->parent);
        if (parent == processes_.end()) return false;
        current = &parent->second;
    }
    return false;
}

/// 1 for the first process of an application.
std::int32_t LinuxProcessTable::parentOf(const Process& process) const {
    if (process.application == nullptr) return process.parent;
    const auto parent = processes_.find(process.parent);
    const bool belongsToIt =
        parent != processes_.end() && parent->second.application == process.application;
    return belongsToIt ? process.parent : 1;
}

std::map<std::int32_t, ProcInfo> LinuxProcessTable::list() {
    const auto index = sources_.applications ? sources_.applications() : nullptr;
    const bool isNewIndex = index != index_;
    for (auto& [number, process] : processes_)
        process.isListed = false;
    const auto before = std::exchange(index_, index);  // until nothing points into it any more
    if (sources_.ownProcess != 0) {
        ownControlGroup_ = kernelText(folderOf(sources_.ownProcess) + "/cgroup").value_or("");
    }

    for (const std::string& name : kernelNames(sources_.proc)) {
        const auto number = processNumber(name);
        if (!number || *number == sources_.ownProcess) continue;
        const auto [place, isNew] = processes_.try_emplace(*number);
        Process& process = place->second;
        if (!isNew && isNewIndex) identify(*number, process);
        if (!update(*number, process)) {
            forget(place);
            continue;  // one that has taken over the number is found the next time
        }
        process.isListed = true;
    }
    for (auto place = processes_.begin(); place != processes_.end();) {
        const auto current = place++;
        if (!current->second.isListed) forget(current);
    }

    forgetUnusedBundles();

    std::map<std::int32_t, ProcInfo> infos;
    for (const auto& [number, process] : processes_) {
        infos.emplace(number, ProcInfo{.ppid = parentOf(process),
                                       .name = process.name,
                                       .isOwn = process.isOwn,
                                       .start = process.start});
    }
    return infos;
}

std::optional<ProcessUsage> LinuxProcessTable::usage(std::int32_t number) {
    const auto place = processes_.find(number);
    if (place == processes_.end()) return std::nullopt;
    Process& process = place->second;
    if (!update(number, process)) {
        forget(place);
        return std::nullopt;
    }
    return ProcessUsage{.time = static_cast<std::uint64_t>(static_cast<double>(process.ticks) *
                                                           nanosecondsPerTick_),
                        .footprint = process.footprint,
                        .traffic = process.traffic};
}

std::optional<std::uint64_t> LinuxProcessTable::startOf(std::int32_t number) const {
    const auto text = kernelText(folderOf(number) + "/stat");
    const auto status = text ? processStatusIn(*text) : std::nullopt;
    if (!status || status->hasEnded()) return std::nullopt;
    return status->start;
}

std::string LinuxProcessTable::executablePath(std::int32_t number) {
    const auto place = processes_.find(number);
    return place == processes_.end() ? std::string() : place->second.executable;
}

std::map<std::int32_t, RunningApp> LinuxProcessTable::runningApps() {
    std::map<std::int32_t, RunningApp> apps;
    const RunningApp own = ownApp();
    for (const auto& [number, process] : processes_) {
        if (isStartedByThisProgram(process)) {
            apps.emplace(number, own);
        } else if (process.application != nullptr) {
            RunningApp& app = apps.emplace(number, *process.application).first->second;
            if (process.isDesktops) app.isForPeople = false;
        }
    }
    return apps;
}

}  // namespace velto
