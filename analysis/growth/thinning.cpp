#include "analysis/growth/thinning.h"

#include <algorithm>
#include <set>
#include <utility>

namespace velto {
namespace {

constexpr std::int64_t day = 86'400;  // seconds
constexpr std::int64_t year = 366 * day;
constexpr std::size_t mostRecent = 12;
constexpr std::size_t alwaysKept = 2;
// An analysis makes one to three superfluous. One under a clock that is years ahead would make all:
// what it takes can be spared until the clock is right again.
constexpr std::size_t mostByAge = 4;

/// One of each span is kept of snapshots up to an age.
struct Span {
    std::int64_t age;
    std::int64_t length;
};
constexpr Span spans[] = {{15 * day, day}, {92 * day, 7 * day}, {year, 30 * day}};

}  // namespace

std::vector<std::int64_t> superfluousSnapshots(std::vector<StoredSnapshot> stored) {
    std::ranges::sort(stored, {}, &StoredSnapshot::moment);
    std::vector<StoredSnapshot> kept;
    std::vector<std::int64_t> superfluous;
    std::set<std::pair<std::int64_t, std::int64_t>> taken;  // length of the span, its number
    for (std::size_t index = 0; index < stored.size(); ++index) {
        const std::int64_t moment = stored[index].moment;
        const std::int64_t age = stored.back().moment - moment;
        const std::size_t newer = stored.size() - 1 - index;
        const bool isRecent = age < 3 * day && newer < mostRecent;
        const auto* const span = std::ranges::find_if(
            spans, [age](const Span& candidate) { return age < candidate.age; });
        const bool isFirst =
            span != std::end(spans) && taken.emplace(span->length, moment / span->length).second;
        const bool isSpared = superfluous.size() == mostByAge;
        if (newer < alwaysKept || isRecent || isFirst || isSpared) {
            kept.push_back(stored[index]);
        } else {
            superfluous.push_back(moment);
        }
    }
    std::int64_t bytes = 0;
    for (const StoredSnapshot& snapshot : kept)
        bytes += snapshot.bytes;
    for (std::size_t index = 0; index + alwaysKept < kept.size(); ++index) {
        if (bytes <= mostGrowthBytes && kept.size() - index <= mostSnapshots) break;
        bytes -= kept[index].bytes;
        superfluous.push_back(kept[index].moment);
    }
    return superfluous;
}

}  // namespace velto
