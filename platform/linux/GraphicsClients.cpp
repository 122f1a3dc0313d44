#include "platform/linux/GraphicsClients.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <iterator>
#include <set>
#include <tuple>
#include <utility>

#include "platform/linux/kernel_file.h"
#include "platform/values/text.h"

namespace velto {
namespace {

// Drivers that count nanoseconds for each engine and user.
constexpr std::array<std::string_view, 7> countingDrivers{"i915",     "amdgpu",  "msm",    "v3d",
                                                          "panfrost", "panthor", "etnaviv"};

std::string targetOf(const std::string& link) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(link.c_str(), target.data(), target.size());
    return length <= 0 ? std::string()
                       : std::string(target.data(), static_cast<std::size_t>(length));
}

bool isNumber(const std::string& name) {
    return !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
}

/// "card0", not the connectors of one ("card0-DP-1").
bool isCard(const std::string& name) {
    return name.starts_with("card") && isNumber(name.substr(4));
}

bool dropStart(std::string_view& text, std::string_view start) {
    if (!text.starts_with(start)) return false;
    text.remove_prefix(start.size());
    return true;
}

}  // namespace

std::vector<EngineTime> engineTimesIn(std::string_view fdinfo) {
    std::string device, driver;
    std::uint64_t client = 0;
    bool hasClient = false;
    std::vector<EngineTime> engines;
    std::map<std::string, int> units;
    while (!fdinfo.empty()) {
        std::string_view line = nextLine(fdinfo);
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos || !line.starts_with("drm-")) continue;
        std::string_view key = line.substr(4, colon - 4);
        std::string_view rest = line.substr(colon + 1);
        const std::string_view value = nextWord(rest);
        if (key == "driver") driver = value;
        if (key == "pdev") device = value;
        if (key == "client-id") {
            client = unsignedNumber(value);
            hasClient = true;
        }
        if (dropStart(key, "engine-capacity-")) {
            const auto count = std::clamp<std::uint64_t>(unsignedNumber(value), 1, 64);
            units[std::string(key)] = static_cast<int>(count);
        } else if (dropStart(key, "engine-") && nextWord(rest) == "ns") {
            engines.push_back({.engine = std::string(key), .nanoseconds = unsignedNumber(value)});
        }
    }
    if (!hasClient) return {};
    for (EngineTime& one : engines) {
        one.device = device.empty() ? driver : device;  // those that hang on no bus have one
        one.client = client;
        const auto found = units.find(one.engine);
        if (found != units.end()) one.units = found->second;
    }
    return engines;
}

void GraphicsClients::searchDevices() {
    telling_.clear();
    hasCounting_ = false;
    const std::string cards = sys_ + "/class/drm/";
    for (const std::string& name : kernelNames(cards)) {
        if (!isCard(name)) continue;
        const std::string device = cards + name + "/device";
        if (::access((device + "/gpu_busy_percent").c_str(), F_OK) == 0) {
            telling_.push_back(device);
            continue;
        }
        const std::string driver(lastPathComponent(targetOf(device + "/driver")));
        if (std::ranges::find(countingDrivers, driver) != countingDrivers.end()) {
            hasCounting_ = true;
        }
    }
    if (!hasCounting_) {
        waiting_.clear();
        files_.clear();
    }
}

std::optional<double> GraphicsClients::busyNow() const {
    std::optional<double> busiest;
    for (const std::string& device : telling_) {
        std::int64_t percent = 0;  // of one that sleeps
        if (kernelLine(device + "/power/runtime_status") != "suspended") {
            const auto told = kernelNumber(device + "/gpu_busy_percent");
            if (!told) continue;
            percent = std::clamp<std::int64_t>(*told, 0, 100);
        }
        busiest = std::max(busiest.value_or(0), static_cast<double>(percent));
    }
    return busiest;
}

/// The files of a process that are a graphics processor's; how many files it has.
std::size_t GraphicsClients::searchProcess(const std::string& process) {
    const std::string folder = proc_ + "/" + process + "/fd/";
    const std::vector<std::string> names = kernelNames(folder);  // none of others' processes
    std::vector<std::string> found;
    for (std::size_t i = 0; i < std::min(names.size(), linksPerReading); ++i) {
        if (targetOf(folder + names[i]).starts_with("/dev/dri/")) found.push_back(names[i]);
    }
    if (found.empty()) {
        files_.erase(process);
    } else {
        files_[process] = std::move(found);
    }
    return names.size();
}

void GraphicsClients::searchProcesses() {
    if (waiting_.empty()) {
        if (readings_ < nextRound_) return;
        nextRound_ = readings_ + readingsBetweenRounds;
        waiting_ = kernelNames(proc_);
        std::erase_if(waiting_, [](const std::string& name) { return !isNumber(name); });
        const std::set<std::string> alive(waiting_.begin(), waiting_.end());
        std::erase_if(files_, [&](const auto& known) { return !alive.contains(known.first); });
    }
    std::size_t links = 0;
    for (std::size_t i = 0; i < processesPerReading && links < linksPerReading; ++i) {
        if (waiting_.empty()) return;
        links += searchProcess(waiting_.back());
        waiting_.pop_back();
    }
}

/// Each user once, however many files it has.
std::vector<EngineTime> GraphicsClients::askClients() {
    std::vector<EngineTime> all;
    std::set<std::pair<std::string, std::uint64_t>> asked;
    std::size_t left = mostFiles;
    for (auto& [process, numbers] : files_) {
        const std::string folder = proc_ + "/" + process + "/fdinfo/";
        std::erase_if(numbers, [&](const std::string& number) {
            if (left == 0) return false;
            --left;
            const auto text = kernelText(folder + number);
            std::vector<EngineTime> engines = engineTimesIn(text.value_or(""));
            if (engines.empty()) return true;  // another file by now
            if (!asked.emplace(engines.front().device, engines.front().client).second) return true;
            std::ranges::move(engines, std::back_inserter(all));
            return false;
        });
    }
    return all;
}

GraphicsCounters GraphicsClients::read() {
    if (readings_++ % readingsBetweenSearches == 0) searchDevices();
    GraphicsCounters counters{.busy = busyNow(), .engines = {}};
    if (!hasCounting_) return counters;
    searchProcesses();
    counters.engines = askClients();
    return counters;
}

}  // namespace velto
