#pragma once

#include <cstdint>
#include <string>

namespace velto {

inline constexpr double bytesPerGigabyte = 1e9;  // decimal gigabytes everywhere
inline constexpr double secondsPerDay = 86400;

/// A moment that a file system tells as seconds since 1970 and nanoseconds. Exact to a quarter of a
/// microsecond, and the same for all who ask for the same file's. (A product: every file of a home
/// comes by here, and a division takes four times as long.)
constexpr double momentOf(std::int64_t seconds, std::int64_t nanoseconds) {
    return static_cast<double>(seconds) + static_cast<double>(nanoseconds) * 1e-9;
}

/// Bytes as decimal gigabytes, not rounded.
double gigabytes(std::int64_t bytes);

/// One decimal, halves away from zero.
double roundedToTenth(double value);

/// "%.1f" with a point, whatever the locale.
std::string tenths(double value);

/// The shortest decimal text that reads back as the same number.
std::string shortest(double value);

}  // namespace velto
