#include "platform/values/units.h"

#include <cmath>

#include <fmt/format.h>

namespace velto {

double gigabytes(std::int64_t bytes) { return static_cast<double>(bytes) / bytesPerGigabyte; }

double roundedToTenth(double value) { return std::round(value * 10) / 10; }

std::string tenths(double value) { return fmt::format("{:.1f}", value); }

std::string shortest(double value) {
    std::string text = fmt::format("{}", value);
    // A whole number keeps its decimal point, so that the text still reads as a real.
    if (std::isfinite(value) && text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

}  // namespace velto
