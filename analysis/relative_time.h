#pragma once

#include <string>

namespace velto {

/// Stands for a date that the system does not know: the first day of the year 1 in the calendar of
/// its time (the Julian one), in seconds since 1970.
inline constexpr double distantPast = -62'135'769'600;

/// How long ago something was, in Spanish (the page translates): "hoy", "ayer", "hace 3 días",
/// "hace 1 mes", "hace 2 años". `days` is 24-hour days, not negative.
std::string relativeTime(double days);

}  // namespace velto
