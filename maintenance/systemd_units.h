#pragma once

#include <string>
#include <string_view>

namespace velto {

/// systemd starts no program whose path holds a quote, a backslash or a control character, and
/// finds none whose path ends with a space.
bool canBeStartedByUnit(std::string_view path);

/// The user service that runs one maintenance pass. It gives way to everything else, has no network
/// and gains no rights. Where the program is no longer there it does nothing. The path is one that
/// a unit can start.
std::string maintenanceServiceText(std::string_view executablePath);

/// The timer that starts the service: once a day, on Saturdays or on the first of the month. A run
/// that the machine slept through is made up for.
std::string maintenanceTimerText(std::string_view frequency);

}  // namespace velto
