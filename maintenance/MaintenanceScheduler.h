#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"

namespace velto {

/// Why automatic maintenance could not be set up; the text is for the log.
class SchedulerError : public std::runtime_error {
public:
    enum class Reason {
        programPlace,  // the program's own path cannot be told to the system
        passingPlace,  // the program is not there for long: see isPassingPlace
        toolMissing,   // the system's tool could not be started
        toolRefused,   // it did not do it
    };

    SchedulerError(Reason reason, const std::string& text)
        : std::runtime_error(text), reason_(reason) {}

    Reason reason() const { return reason_; }

private:
    Reason reason_;
};

/// Makes the unattended maintenance run happen on a schedule, by what the user's system has for
/// that: a launch agent on a Mac (and in the layout of one), a timer of the user's service manager
/// on a freedesktop home. Either starts this program with "--maintenance". Safe from every thread:
/// calls wait for each other, those of other objects included.
class MaintenanceScheduler {
public:
    explicit MaintenanceScheduler(Platform& platform) : platform_(platform) {}

    /// Installs the schedule for a frequency ("daily", "weekends", "monthly"); one that is
    /// installed already is replaced. Throws FileError when a file cannot be written and
    /// SchedulerError when the system's tool cannot be started or, for a timer, refuses; what was
    /// installed before is then put back and goes on, and where nothing was, nothing is.
    void install(std::string_view frequency);

    /// `install`, but for a schedule that stands there already as it would be written: replacing an
    /// agent ends the run that it has started, and its interval begins anew.
    void ensureInstalled(std::string_view frequency);

    /// At the start of the window, for an agent that is installed: one that starts a program at
    /// another place than this one's is written anew (the application was moved), and one whose
    /// last run lies longer ago than its interval is started now, since an agent counts its
    /// interval from each login and does not make up for it. Failures are logged. Blocks for a
    /// tool's time; a timer looks after itself.
    void keepGoing(std::string_view frequency);

    /// Takes the schedule away; nothing installed is no error. Throws FileError when a file stays.
    void remove();

    bool isInstalled() const;

    /// Tells the user what a run did; once only, however often it is called.
    void notify(const std::string& title, const std::string& body);

private:
    /// What stands at the places of the schedule.
    struct Installed {
        std::optional<std::string> agent;    // the text of the agent's file, of the timer's
        std::optional<std::string> service;  // what the timer starts
        bool isEnabled = false;              // the timer comes with the session
    };

    bool isAgent() const { return platform_.layout.kind == HomeLayout::Kind::macOS; }
    void requireLastingPlace() const;
    bool stands(std::string_view frequency) const;
    bool startsThisProgram(std::string_view agent) const;
    void loadAgent();
    Installed installed() const;
    std::optional<std::string> textOf(const std::string& file) const;
    void putBack(const Installed& before);
    void putBack(const std::string& file, const std::optional<std::string>& text);
    void logged(const std::function<void()>& step);
    void installAgent(std::string_view frequency);
    void installTimer(std::string_view frequency);
    void enableTimer();
    std::string enabledLink() const;
    std::vector<std::string> installedFiles() const;
    ToolResult systemctl(std::vector<std::string> arguments);

    Platform& platform_;
    bool notified_ = false;
};

/// The launch agent's property list, byte for byte. The executable's path goes in as it is.
std::string launchAgentText(std::string_view executablePath, std::string_view frequency);

/// Seconds between two runs.
int maintenanceInterval(std::string_view frequency);

}  // namespace velto
