#include "analysis/growth/GrowthAnswers.h"

#include <algorithm>

namespace velto {
namespace {

constexpr std::int64_t dayInSeconds = 86'400;

std::int64_t wantedMoment(const GrowthSince& since, std::int64_t until) {
    switch (since.kind) {
        case GrowthSince::Kind::week:
            return until - 7 * dayInSeconds;
        case GrowthSince::Kind::month:
            return until - 30 * dayInSeconds;
        case GrowthSince::Kind::moment:
            return since.moment;
        case GrowthSince::Kind::last:
            break;
    }
    return until;
}

/// In the order in which they serve: the nearest at or before the moment, those before that, and
/// then what is left from the oldest on. `older` is in order of time.
std::vector<std::int64_t> candidates(const std::vector<std::int64_t>& older, std::int64_t wanted) {
    const auto after = std::ranges::upper_bound(older, wanted);
    std::vector<std::int64_t> ordered(older.begin(), after);
    std::ranges::reverse(ordered);
    ordered.insert(ordered.end(), after, older.end());
    return ordered;
}

}  // namespace

GrowthAnswers::GrowthAnswers(const Platform& platform)
    : platform_(platform), store_(*platform.files, *platform.mover, platform.layout) {}

std::optional<GrowthAnswers::Answer> GrowthAnswers::growth(const GrowthSince& since) {
    const auto both = two(since);
    if (!both) return std::nullopt;
    return Answer{.growth = compareGrowth(*both->earlier, *both->later),
                  .available = both->available};
}

std::optional<GrowthAnswers::Inside> GrowthAnswers::inside(const std::string& path,
                                                           const GrowthSince& since) {
    const auto both = two(since);
    if (!both) return std::nullopt;
    return Inside{.since = both->earlier->facts().moment,
                  .folders = growthInside(*both->earlier, *both->later, path)};
}

std::optional<GrowthAnswers::Two> GrowthAnswers::two(const GrowthSince& since) {
    std::vector<std::int64_t> moments = store_.moments();
    // One that was made under a wrong clock waits for its time.
    const auto now = static_cast<std::int64_t>(platform_.clock->now());
    std::erase_if(moments, [now](std::int64_t moment) { return moment > now; });
    Two found;
    while (!moments.empty() && !found.later) {
        found.later = snapshot(moments.back());
        moments.pop_back();
    }
    if (!found.later) return std::nullopt;
    const std::int64_t wanted = wantedMoment(since, found.later->facts().moment);
    for (const std::int64_t moment : candidates(moments, wanted)) {
        found.earlier = snapshot(moment);
        if (found.earlier) break;
    }
    if (!found.earlier) return std::nullopt;
    found.available.assign(moments.rbegin(), moments.rend());
    keepOnly(found);
    return found;
}

GrowthAnswers::Snapshot GrowthAnswers::snapshot(std::int64_t moment) {
    {
        const std::lock_guard guard(lock_);
        const auto known = read_.find(moment);
        if (known != read_.end()) return known->second;
    }
    return store_.load(moment);
}

void GrowthAnswers::keepOnly(const Two& two) {
    const std::lock_guard guard(lock_);
    read_ = {{two.earlier->facts().moment, two.earlier}, {two.later->facts().moment, two.later}};
}

void GrowthAnswers::forget() {
    {
        const std::lock_guard guard(lock_);
        read_.clear();
    }
    store_.forget();
}

}  // namespace velto
