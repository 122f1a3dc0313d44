#include "uninstall/quit_processes.h"

#include <algorithm>
#include <array>
#include <memory>

#include "platform/values/text.h"

namespace velto {
namespace {

constexpr double secondsToQuit = 2.0;
constexpr std::int64_t microsecondsBetweenLooks = 150'000;

// What builds a Flatpak's sandbox, and through what it talks to the session. They end with it.
constexpr std::array<std::string_view, 5> sandboxKeepers{"bwrap", "flatpak-bwrap", "xdg-dbus-proxy",
                                                         "flatpak-dbus-proxy", "flatpak"};

bool keepsSandbox(const RunningApplication& process) {
    return !process.flatpak.empty() &&
           std::ranges::find(sandboxKeepers, lastPathComponent(process.executable)) !=
               sandboxKeepers.end();
}

struct Held {
    std::unique_ptr<ProcessControl> control;
    bool keepsSandbox = false;
};

}  // namespace

int quitProcesses(const Platform& platform, const std::vector<RunningApplication>& processes) {
    std::vector<Held> held;
    for (const RunningApplication& process : processes) {
        if (auto control = platform.running->control(process)) {
            held.push_back({std::move(control), keepsSandbox(process)});
        }
    }
    if (held.empty()) return 0;
    const bool areAllKeepers =
        std::ranges::all_of(held, [](const Held& one) { return one.keepsSandbox; });
    for (const Held& one : held) {
        if (areAllKeepers || !one.keepsSandbox) one.control->terminate();
    }
    const auto haveEnded = [&] {
        return std::ranges::all_of(held,
                                   [](const Held& one) { return one.control->isTerminated(); });
    };
    const double deadline = platform.clock->monotonic() + secondsToQuit;
    while (!haveEnded() && platform.clock->monotonic() < deadline) {
        platform.sleeper->sleep(microsecondsBetweenLooks);
    }
    for (const Held& one : held) {
        if (!one.control->isTerminated()) one.control->forceTerminate();
    }
    return static_cast<int>(held.size());
}

}  // namespace velto
