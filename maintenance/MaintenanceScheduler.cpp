#include "maintenance/MaintenanceScheduler.h"

#include <cerrno>
#include <mutex>

#include <fmt/format.h>

#include "maintenance/next_run.h"
#include "maintenance/systemd_units.h"
#include "platform/program_places.h"
#include "platform/values/text.h"
#include "platform/values/uuid.h"

namespace velto {
namespace {

constexpr const char* launchctl = "/bin/launchctl";
constexpr const char* systemctlPath = "/usr/bin/systemctl";
constexpr const char* notificationPrefix = "velto.maintenance.";
constexpr ReadLimit agentLimit = anyFile(1 << 20);  // of an agent or a unit; a link may lead to it
constexpr std::string_view agentLabel = "app.velto.maintenance";

/// The window's start looks after the agent on a thread of its own.
std::recursive_mutex oneAtATime;

/// Why a tool has not done what it was asked.
std::string reasonOf(const ToolResult& result) {
    return singleLine(result.started ? result.standardError : result.startError);
}

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

void MaintenanceScheduler::requireLastingPlace() const {
    const std::string& program = platform_.executablePath;
    if (isAgent() && isPassingPlace(program, isOnReadOnlyVolume(program))) {
        throw SchedulerError(SchedulerError::Reason::passingPlace,
                             fmt::format("the program is only for now at {}", program));
    }
    if (!isAgent() && !canBeStartedByUnit(program)) {
        throw SchedulerError(
            SchedulerError::Reason::programPlace,
            fmt::format("systemd cannot start a program with this path: {}", program));
    }
}

void MaintenanceScheduler::ensureInstalled(std::string_view frequency) {
    if (!stands(frequency)) install(frequency);
}

bool MaintenanceScheduler::stands(std::string_view frequency) const {
    const Installed now = installed();
    const std::string& program = platform_.executablePath;
    if (isAgent()) return now.agent == launchAgentText(program, frequency);
    return now.agent == maintenanceTimerText(frequency) &&
           now.service == maintenanceServiceText(program) && now.isEnabled;
}

void MaintenanceScheduler::install(std::string_view frequency) {
    const std::lock_guard guard(oneAtATime);
    requireLastingPlace();
    const Installed before = installed();  // one that cannot be read is not replaced either
    try {
        platform_.files->createFolders(platform_.layout.agentsFolder);
        isAgent() ? installAgent(frequency) : installTimer(frequency);
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
    loadAgent();
}

/// "load" has been known to complain of an agent that it has loaded: what is loaded counts.
void MaintenanceScheduler::loadAgent() {
    const ToolResult load = platform_.tools->run(launchctl, {"load", platform_.layout.agentFile});
    if (!load.started) {
        throw SchedulerError(SchedulerError::Reason::toolMissing,
                             fmt::format("could not start {}: {}", launchctl, load.startError));
    }
    const std::string complaint = singleLine(load.standardError);
    if (load.exitStatus == 0 && complaint.empty()) return;
    const std::string reason =
        fmt::format("{} load: status {} {}", launchctl, load.exitStatus, complaint);
    const ToolResult look = platform_.tools->run(launchctl, {"list", std::string(agentLabel)});
    if (!look.started || look.exitStatus != 0) {
        throw SchedulerError(SchedulerError::Reason::toolRefused, reason);
    }
    platform_.log->line("Velto ▶ agente de mantenimiento cargado con avisos: " + reason);
}

bool MaintenanceScheduler::startsThisProgram(std::string_view agent) const {
    const std::string entry = fmt::format("<string>{}</string>", platform_.executablePath);
    return agent.find(entry) != std::string_view::npos;
}

void MaintenanceScheduler::keepGoing(std::string_view frequency) {
    if (!isAgent()) return;
    const std::lock_guard guard(oneAtATime);
    try {
        const auto agent = textOf(platform_.layout.agentFile);
        if (!agent) return;
        // Before the file gets a new date.
        const bool isOverdue = isMaintenanceOverdue(platform_, frequency);
        const std::string& program = platform_.executablePath;
        const bool isPassing = isPassingPlace(program, isOnReadOnlyVolume(program));
        if (!startsThisProgram(*agent) && !isPassing) {
            install(frequency);
            platform_.log->line(
                "Velto ▶ agente de mantenimiento reescrito: la aplicación cambió de sitio");
        }
        if (!isOverdue) return;
        const ToolResult start = platform_.tools->run(
            launchctl,
            {"kickstart", fmt::format("gui/{}/{}", platform_.userIdentifier, agentLabel)});
        platform_.log->line(start.exitStatus == 0
                                ? "Velto ▶ mantenimiento atrasado: se inicia ahora"
                                : "Velto ▶ mantenimiento atrasado, y no se pudo iniciar: " +
                                      reasonOf(start));
    } catch (const std::exception& error) {
        platform_.log->line("Velto ▶ el agente de mantenimiento no se pudo revisar: " +
                            singleLine(error.what()));
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
    const std::lock_guard guard(oneAtATime);
    if (isInstalled()) {
        // A tool that cannot be started has nothing loaded; the files have to go all the same.
        if (isAgent()) {
            const ToolResult unload =
                platform_.tools->run(launchctl, {"unload", platform_.layout.agentFile});
            if (unload.exitStatus != 0) {
                platform_.log->line("Velto ▶ launchctl unload: " + reasonOf(unload));
            }
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
    if (hasRemoved && !isAgent()) systemctl({"daemon-reload"});
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
