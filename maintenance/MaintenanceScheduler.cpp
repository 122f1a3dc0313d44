#include "maintenance/MaintenanceScheduler.h"

#include <fmt/format.h>

namespace velto {
namespace {

constexpr const char* launchctl = "/bin/launchctl";
constexpr std::string_view agentLabel = "app.velto.maintenance";

}  // namespace

int maintenanceInterval(std::string_view frequency) {
    constexpr int day = 86400;
    if (frequency == "daily") return day;
    if (frequency == "monthly") return 30 * day;
    return 7 * day;
}

std::string launchAgentText(std::string_view executablePath, std::string_view frequency) {
    // RunAtLoad is false on purpose: loading the agent does not start a run.
    return fmt::format(
        R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
    <key>Label</key><string>{}</string>
    <key>ProgramArguments</key>
    <array>
        <string>{}</string>
        <string>--maintenance</string>
    </array>
    <key>StartInterval</key>
    <integer>{}</integer>
    <key>RunAtLoad</key>
    <false/>
</dict>
</plist>)",
        agentLabel, executablePath, maintenanceInterval(frequency));
}

void MaintenanceScheduler::install(std::string_view frequency) {
    const HomeLayout& layout = platform_.layout;
    if (layout.kind != HomeLayout::Kind::macOS) {
        throw SchedulerError("scheduled maintenance is not supported on this system");
    }
    platform_.files->createFolders(layout.agentsFolder);
    platform_.files->writeAtomically(layout.agentFile,
                                     launchAgentText(platform_.executablePath, frequency));
    // The agent is usually not loaded yet, so the outcome of "unload" says nothing.
    platform_.tools->run(launchctl, {"unload", layout.agentFile});
    const ToolResult load = platform_.tools->run(launchctl, {"load", layout.agentFile});
    if (!load.started) {
        throw SchedulerError(fmt::format("could not start {}: {}", launchctl, load.startError));
    }
}

void MaintenanceScheduler::remove() {
    if (!isInstalled()) return;
    // A tool that cannot be started has nothing loaded; the file has to go all the same.
    platform_.tools->run(launchctl, {"unload", platform_.layout.agentFile});
    platform_.files->removeAll(platform_.layout.agentFile);
}

bool MaintenanceScheduler::isInstalled() const {
    return platform_.files->exists(platform_.layout.agentFile);
}

}  // namespace velto
