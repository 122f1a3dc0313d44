#include "analysis/relative_time.h"

#include <cmath>

#include <fmt/format.h>

namespace velto {
namespace {

constexpr double daysPerMonth = 30;
constexpr double daysPerYear = 365;

}  // namespace

std::string relativeTime(double days) {
    if (days < 1) return "hoy";
    if (days < 2) return "ayer";
    if (days < daysPerMonth) return fmt::format("hace {:.0f} días", std::trunc(days));
    if (days < daysPerYear) {
        const double months = std::trunc(days / daysPerMonth);
        return months == 1 ? "hace 1 mes" : fmt::format("hace {:.0f} meses", months);
    }
    const double years = std::trunc(days / daysPerYear);
    return years == 1 ? "hace 1 año" : fmt::format("hace {:.0f} años", years);
}

}  // namespace velto
