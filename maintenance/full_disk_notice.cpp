#include "maintenance/full_disk_notice.h"

#include <fmt/format.h>

#include "platform/values/units.h"
#include "settings/sentence_number.h"

namespace velto {
namespace {

constexpr double tellAgain = 7 * secondsPerDay;

}  // namespace

FullDiskNotice fullDiskNotice(std::int64_t threshold, std::optional<std::int64_t> available,
                              double told, double now) {
    if (!available) return {.isDue = false, .told = told};
    if (threshold <= 0 || gigabytes(*available) >= static_cast<double>(threshold)) return {};
    // A time that is still to come was noted before the clock was set back.
    const bool wasTold = told > 0 && told <= now && now - told < tellAgain;
    return {.isDue = !wasTold, .told = wasTold ? told : now};
}

std::string fullDiskTitle(const AppLanguage& language) {
    return std::string(language.text("Queda poco espacio", "Your disk is getting full"));
}

std::string fullDiskMessage(const AppLanguage& language, std::int64_t available) {
    const std::string number = sentenceNumber(roundedToTenth(gigabytes(available)), language);
    return fmt::format(
        fmt::runtime(language.text("Quedan {} GB libres. Velto muestra qué los ocupa.",
                                   "{} GB are free. Velto shows what takes up the rest.")),
        number);
}

}  // namespace velto
