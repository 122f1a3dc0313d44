#pragma once

namespace velto {

/// A disk on which waiting for the trash to be emptied may be too long: less than 5 GB and less
/// than a twentieth of it are free. Both in GB; a total of 0 is unknown.
constexpr bool isNearlyFull(double free, double total) {
    constexpr double fewGigabytes = 5;
    constexpr double smallShare = 0.05;
    return total > 0 && free < fewGigabytes && free < total * smallShare;
}

}  // namespace velto
