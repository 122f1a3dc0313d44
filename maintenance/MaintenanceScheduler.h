#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/Platform.h"

namespace velto {

/// Why automatic maintenance could not be set up; the text is for the user.
class SchedulerError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Makes the unattended maintenance run happen on a schedule: a per-user launch agent that starts
/// this program with "--maintenance". Main thread or a work item, one call at a time.
class MaintenanceScheduler {
public:
    explicit MaintenanceScheduler(Platform& platform) : platform_(platform) {}

    /// Writes the agent for a frequency ("daily", "weekends", "monthly") and loads it; one that is
    /// loaded already is unloaded first. Throws FileError when the file cannot be written and
    /// SchedulerError when the system's tool cannot be started or knows no such agents.
    void install(std::string_view frequency);

    /// Unloads the agent and takes its file away; nothing installed is no error. Throws FileError
    /// when the file stays.
    void remove();

    bool isInstalled() const;

private:
    Platform& platform_;
};

/// The launch agent's property list, byte for byte. The executable's path goes in as it is.
std::string launchAgentText(std::string_view executablePath, std::string_view frequency);

/// Seconds between two runs.
int maintenanceInterval(std::string_view frequency);

}  // namespace velto
