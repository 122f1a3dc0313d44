#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "analysis/growth/GrowthStore.h"
#include "analysis/growth/comparison.h"
#include "platform/Platform.h"

namespace velto {

/// From when on growth is asked for, counted back from the last analysis.
struct GrowthSince {
    enum class Kind { last, week, month, moment };

    Kind kind = Kind::last;
    std::int64_t moment = 0;  // seconds since 1970, of the kind `moment` alone
};

/// What the stored snapshots tell of each other. Blocking; not on the main thread, safe from every
/// other one.
class GrowthAnswers {
public:
    /// The platform outlives it.
    explicit GrowthAnswers(const Platform& platform);

    struct Answer {
        Growth growth;
        std::vector<std::int64_t> available;  // what can be compared with, newest first
    };

    /// Compares the last analysis with the nearest one at or before the moment, or else with the
    /// oldest. Nothing when there are no two; one that cannot be read is passed over.
    std::optional<Answer> growth(const GrowthSince& since);

    struct Inside {
        std::int64_t since = 0;                       // as above
        std::map<std::string, std::int64_t> folders;  // see `growthInside`
    };
    std::optional<Inside> inside(const std::string& path, const GrowthSince& since);

    /// Removes all snapshots. Throws FileError.
    void forget();

private:
    using Snapshot = std::shared_ptr<const GrowthSnapshot>;

    struct Two {
        Snapshot earlier;
        Snapshot later;
        std::vector<std::int64_t> available;
    };

    std::optional<Two> two(const GrowthSince& since);
    Snapshot snapshot(std::int64_t moment);
    void keepOnly(const Two& two);

    const Platform& platform_;
    GrowthStore store_;
    std::mutex lock_;
    std::map<std::int64_t, Snapshot> read_;  // the last two: one view asks for several folders
};

}  // namespace velto
