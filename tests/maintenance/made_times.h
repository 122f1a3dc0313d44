#pragma once

#include <ctime>

namespace velto {

/// The full hour of a day as this machine's clocks show it, in seconds since 1970.
inline double localTime(int year, int month, int day, int hour) {
    std::tm date{};
    date.tm_year = year - 1900;
    date.tm_mon = month - 1;
    date.tm_mday = day;
    date.tm_hour = hour;
    date.tm_isdst = -1;
    return static_cast<double>(std::mktime(&date));
}

}  // namespace velto
