#pragma once

#include <cstdint>
#include <string>

namespace velto {

inline constexpr double bytesPerGigabyte = 1e9;  // decimal gigabytes everywhere
inline constexpr double secondsPerDay = 86400;

/// Bytes as decimal gigabytes, not rounded.
double gigabytes(std::int64_t bytes);

/// One decimal, halves away from zero.
double roundedToTenth(double value);

/// "%.1f" with a point, whatever the locale.
std::string tenths(double value);

/// The shortest decimal text that reads back as the same number.
std::string shortest(double value);

}  // namespace velto
