#include "maintenance/MaintenanceScheduler.h"

#include <cerrno>

#include <fmt/format.h>

#include "maintenance/systemd_units.h"
#include "platform/values/text.h"
#include "platform/values/uuid.h"

namespace velto {
namespace {

constexpr const char* launchctl = "/bin/launchctl";
constexpr const char* systemctlPath = "/usr/bin/systemctl";
constexpr const char* notificationPrefix = "velto.maintenance.";
constexpr ReadLimit agentLimit = anyFile(1 << 20);  // of an agent or a unit; a link may lead to it
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
    const bool isAgent = platform_.layout.kind == HomeLayout::Kind::macOS;
    if (!isAgent && !canBeStartedByUnit(platform_.executablePath)) {
        throw SchedulerError(SchedulerError::Reason::programPlace,
                             fmt::format("systemd cannot start a program with this path: {}",
                                         platform_.executablePath));
    }
    const Installed before = installed();  // one that cannot be read is not replaced either
    try {
        platform_.files->createFolders(platform_.layout.agentsFolder);
        isAgent ? installAgent(frequency) : installTimer(frequency);
    } catch (...) {
        putBack(before);
        throw;
    }
}

MaintenanceScheduler::Installed MaintenanceScheduler::installed() const {
    const HomeLayout& layout = platform_.layout;
    const bool isTimer = layout.kind == HomeLayout::Kind::freedesktop;
    return {.agent = textOf(layout.agentFile),
            .service = isTimer ? textOf(layout.agentService) : std::nullopt,
            .isEnabled = isTimer && platform_.files->exists(enabledLink())};
}

std::optional<std::string> MaintenanceScheduler::textOf(const std::string& file) const {
    try {
        return platform_.files->read(file, agentLimit);
    } catch (const RefusedFile&) {
        return std::nullopt;  // nothing that could be a schedule
    } catch (const FileError& error) {
        if (error.code() == ENOENT) return std::nullopt;
        throw;
    }
}

/// After a failed installation. What the tool says now does not matter: with the files as they
/// were, the older schedule runs at the latest from the next session on.
void MaintenanceScheduler::putBack(const Installed& before) {
    const HomeLayout& layout = platform_.layout;
    if (!before.agent) {
        logged([&] { remove(); });
        return;
    }
    putBack(layout.agentFile, before.agent);
    if (layout.kind == HomeLayout::Kind::macOS) {
        platform_.tools->run(launchctl, {"load", layout.agentFile});
        return;
    }
    putBack(layout.agentService, before.service);
    if (!before.isEnabled) putBack(enabledLink(), std::nullopt);
    systemctl({"daemon-reload"});
    if (before.isEnabled) systemctl({"restart", std::string(lastPathComponent(layout.agentFile))});
}

void MaintenanceScheduler::putBack(const std::string& file,
                                   const std::optional<std::string>& text) {
    logged([&] {
        if (!text) {
            platform_.files->removeAll(file);
        } else if (textOf(file) != text) {
            platform_.files->writeAtomically(file, *text);
        }
    });
}

/// The reason of the failure that led here matters more than one more.
void MaintenanceScheduler::logged(const std::function<void()>& step) {
    try {
        step();
    } catch (const FileError& error) {
        platform_.log->line(error.what());
    }
}

void MaintenanceScheduler::installAgent(std::string_view frequency) {
    const std::string& file = platform_.layout.agentFile;
    platform_.files->writeAtomically(file, launchAgentText(platform_.executablePath, frequency));
    // The agent is usually not loaded yet, so the outcome of "unload" says nothing.
    platform_.tools->run(launchctl, {"unload", file});
    const ToolResult load = platform_.tools->run(launchctl, {"load", file});
    if (!load.started) {
        throw SchedulerError(SchedulerError::Reason::toolMissing,
                             fmt::format("could not start {}: {}", launchctl, load.startError));
    }
}

void MaintenanceScheduler::installTimer(std::string_view frequency) {
    const HomeLayout& layout = platform_.layout;
    platform_.files->writeAtomically(layout.agentService,
                                     maintenanceServiceText(platform_.executablePath));
    platform_.files->writeAtomically(layout.agentFile, maintenanceTimerText(frequency));
    enableTimer();
}

void MaintenanceScheduler::enableTimer() {
    const std::string timer(lastPathComponent(platform_.layout.agentFile));
    const std::vector<std::vector<std::string>> steps{
        {"daemon-reload"}, {"enable", timer}, {"restart", timer}};
    for (const auto& step : steps) {
        const ToolResult result = systemctl(step);
        if (!result.started) {
            throw SchedulerError(
                SchedulerError::Reason::toolMissing,
                fmt::format("could not start {}: {}", systemctlPath, result.startError));
        }
        if (result.exitStatus != 0) {
            const std::string reason = singleLine(result.standardError);
            throw SchedulerError(
                SchedulerError::Reason::toolRefused,
                fmt::format("{} {}: {}", systemctlPath, step.front(),
                            reason.empty() ? fmt::format("status {}", result.exitStatus) : reason));
        }
    }
}

void MaintenanceScheduler::remove() {
    const bool isAgent = platform_.layout.kind == HomeLayout::Kind::macOS;
    if (isInstalled()) {
        // A tool that cannot be started has nothing loaded; the files have to go all the same.
        if (isAgent) {
            platform_.tools->run(launchctl, {"unload", platform_.layout.agentFile});
        } else {
            const std::string timer(lastPathComponent(platform_.layout.agentFile));
            systemctl({"disable", "--now", timer});
        }
    }
    bool hasRemoved = false;
    for (const std::string& file : installedFiles()) {
        if (!platform_.files->exists(file)) continue;
        platform_.files->removeAll(file);
        hasRemoved = true;
    }
    if (hasRemoved && !isAgent) systemctl({"daemon-reload"});
}

bool MaintenanceScheduler::isInstalled() const {
    return platform_.files->exists(platform_.layout.agentFile);
}

/// Enabling the timer makes it.
std::string MaintenanceScheduler::enabledLink() const {
    const HomeLayout& layout = platform_.layout;
    return layout.agentsFolder + "/timers.target.wants/" +
           std::string(lastPathComponent(layout.agentFile));
}

/// The link last: a service manager that is not there cannot take it away.
std::vector<std::string> MaintenanceScheduler::installedFiles() const {
    const HomeLayout& layout = platform_.layout;
    if (layout.kind == HomeLayout::Kind::macOS) return {layout.agentFile};
    return {layout.agentFile, layout.agentService, enabledLink()};
}

ToolResult MaintenanceScheduler::systemctl(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "--user");
    return platform_.tools->run(systemctlPath, arguments);
}

void MaintenanceScheduler::notify(const std::string& title, const std::string& body) {
    if (notified_) return;
    notified_ = true;
    platform_.notifications->post(notificationPrefix + newUUID(), title, body);
}

}  // namespace velto
