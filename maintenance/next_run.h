#pragma once

#include <optional>
#include <string_view>

#include "platform/Platform.h"

namespace velto {

/// When the installed schedule starts its next run, in seconds since 1970, as far as that can be
/// told from outside: an agent counts its interval from the run before (`lastRun`, if there was
/// one) or from its installation, a timer goes by the calendar of this machine's time zone and may
/// come up to an hour later. A run that should have been already is made up for, and is given as
/// now. What was noted before the clock was set back counts from now. Nothing when nothing is
/// installed.
std::optional<double> nextMaintenance(const Platform& platform, std::string_view frequency,
                                      std::optional<double> lastRun);

/// True when the run that an installed schedule should have made by now has not happened.
bool isMaintenanceOverdue(const Platform& platform, std::string_view frequency);

/// The first start of a timer after `now`: the next midnight, the next Saturday's or the next first
/// of a month's.
double nextCalendarRun(double now, std::string_view frequency);

}  // namespace velto
