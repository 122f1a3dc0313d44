#include "maintenance/systemd_units.h"

#include <algorithm>

#include <fmt/format.h>

namespace velto {
namespace {

/// "%" begins a specifier, and is doubled to stand for itself.
std::string withoutSpecifiers(std::string_view path) {
    std::string text;
    for (const char character : path) {
        if (character == '%') text += '%';
        text += character;
    }
    return text;
}

std::string_view calendar(std::string_view frequency) {
    if (frequency == "daily") return "daily";
    if (frequency == "monthly") return "monthly";
    return "Sat";
}

}  // namespace

bool canBeStartedByUnit(std::string_view path) {
    return !path.ends_with(' ') && std::ranges::none_of(path, [](char character) {
        const auto code = static_cast<unsigned char>(character);
        return code < 0x20 || code == 0x7F || character == '"' || character == '\'' ||
               character == '\\';
    });
}

std::string maintenanceServiceText(std::string_view executablePath) {
    // A program that was taken away is no failure: its schedule may outlive it.
    return fmt::format(R"([Unit]
Description=Velto maintenance
ConditionFileIsExecutable={0}

[Service]
Type=oneshot
ExecStart="{0}" --maintenance
Nice=19
CPUSchedulingPolicy=idle
IOSchedulingClass=idle
NoNewPrivileges=yes
RestrictAddressFamilies=AF_UNIX
RestrictRealtime=yes
LockPersonality=yes
SystemCallArchitectures=native
)",
                       withoutSpecifiers(executablePath));
}

std::string maintenanceTimerText(std::string_view frequency) {
    return fmt::format(R"([Unit]
Description=Velto maintenance schedule

[Timer]
OnCalendar={}
Persistent=true
RandomizedDelaySec=1h

[Install]
WantedBy=timers.target
)",
                       calendar(frequency));
}

}  // namespace velto
