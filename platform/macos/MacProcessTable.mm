#include "platform/macos/MacProcessTable.h"

#import <AppKit/AppKit.h>

#include <libproc.h>
#include <mach/mach_time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/macos/foundation_text.h"
#include "platform/values/ticks.h"

namespace velto {
namespace {

constexpr std::size_t roomForNewProcesses = 32;
constexpr std::size_t longestPath = 1024;

std::vector<pid_t> allProcesses() {
    const int needed = proc_listpids(PROC_ALL_PIDS, 0, nullptr, 0);
    if (needed <= 0) return {};
    std::vector<pid_t> numbers(static_cast<std::size_t>(needed) / sizeof(pid_t) +
                               roomForNewProcesses);
    const int filled = proc_listpids(PROC_ALL_PIDS, 0, numbers.data(),
                                     static_cast<int>(numbers.size() * sizeof(pid_t)));
    if (filled <= 0) return {};
    numbers.resize(std::min(numbers.size(), static_cast<std::size_t>(filled) / sizeof(pid_t)));
    return numbers;
}

/// Fixed fields need not end in a zero byte.
template <std::size_t size>
std::string textIn(const char (&field)[size]) {
    return std::string(
        std::string_view(field, size).substr(0, std::string_view(field, size).find('\0')));
}

std::optional<proc_bsdinfo> informationOf(pid_t process) {
    proc_bsdinfo information{};
    const int size = proc_pidinfo(process, PROC_PIDTBSDINFO, 0, &information, sizeof information);
    return size == static_cast<int>(sizeof information) ? std::optional(information) : std::nullopt;
}

/// The usage record counts in ticks.
TickLength tickLength() {
    static const TickLength length = [] {
        mach_timebase_info_data_t base{};
        mach_timebase_info(&base);
        return TickLength{base.numer, base.denom};
    }();
    return length;
}

std::uint64_t startIn(const proc_bsdinfo& information) {
    constexpr std::uint64_t microsecondsPerSecond = 1'000'000;
    return information.pbi_start_tvsec * microsecondsPerSecond + information.pbi_start_tvusec;
}

/// It has windows and a place in the Dock, and is no part of the desktop itself, as the Finder is.
bool isForPeople(NSRunningApplication* application) {
    return application.activationPolicy == NSApplicationActivationPolicyRegular &&
           !pathOf(application.bundleURL).starts_with("/System/Library/CoreServices/");
}

std::string nameOf(NSRunningApplication* application) {
    if (application.localizedName != nil) return utf8(application.localizedName);
    return utf8(application.bundleURL.lastPathComponent.stringByDeletingPathExtension);
}

}  // namespace

std::map<std::int32_t, ProcInfo> MacProcessTable::list() {
    std::map<std::int32_t, ProcInfo> infos;
    const pid_t own = getpid();
    for (const pid_t process : allProcesses()) {
        if (process < 1 || process == own) continue;
        const auto information = informationOf(process);
        if (!information) continue;
        std::string name = textIn(information->pbi_name);
        if (name.empty()) name = textIn(information->pbi_comm);
        infos.emplace(process, ProcInfo{.ppid = static_cast<std::int32_t>(information->pbi_ppid),
                                        .name = std::move(name),
                                        .isOwn = information->pbi_uid == getuid(),
                                        .start = startIn(*information)});
    }
    return infos;
}

std::optional<ProcessUsage> MacProcessTable::usage(std::int32_t process) {
    rusage_info_v4 used{};
    // The call takes the record under the type of any of its versions.
    if (proc_pid_rusage(process, RUSAGE_INFO_V4, reinterpret_cast<rusage_info_t*>(&used)) != 0) {
        return std::nullopt;
    }
    return ProcessUsage{
        .time = nanosecondsOf(used.ri_user_time + used.ri_system_time, tickLength()),
        .footprint = used.ri_phys_footprint,
        .traffic = ProcessTraffic{.read = used.ri_diskio_bytesread,
                                  .written = used.ri_diskio_byteswritten}};
}

std::int32_t MacProcessTable::ownProcess() const { return getpid(); }

std::optional<std::uint64_t> MacProcessTable::startOf(std::int32_t process) const {
    const auto information = informationOf(process);
    return information ? std::optional(startIn(*information)) : std::nullopt;
}

std::string MacProcessTable::executablePath(std::int32_t process) {
    std::array<char, longestPath> path{};
    const int length = proc_pidpath(process, path.data(), static_cast<std::uint32_t>(path.size()));
    return length <= 0 ? std::string() : std::string(path.data(), static_cast<std::size_t>(length));
}

std::map<std::int32_t, RunningApp> MacProcessTable::runningApps() {
    @autoreleasepool {
        std::map<std::int32_t, RunningApp> apps;
        for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
            apps.emplace(application.processIdentifier,
                         RunningApp{.name = nameOf(application),
                                    .bundle = utf8(application.bundleIdentifier),
                                    .path = pathOf(application.bundleURL),
                                    .isForPeople = isForPeople(application)});
        }
        return apps;
    }
}

}  // namespace velto
