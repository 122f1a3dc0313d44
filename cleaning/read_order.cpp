#include "cleaning/read_order.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace velto {
namespace {

constexpr std::int64_t mebibyte = 1024 * 1024;
constexpr std::int64_t inOneGo = 4 * mebibyte;
constexpr std::int64_t endOfDoubling = 8 * mebibyte;

}  // namespace

std::vector<ReadLane> readLanes(
    const std::vector<std::size_t>& files,
    const std::function<const std::optional<FilePlace>&(std::size_t file)>& placeOf) {
    std::map<std::uint64_t, ReadLane> ofDisk;
    std::vector<ReadLane> others;
    for (const std::size_t file : files) {
        const std::optional<FilePlace>& place = placeOf(file);
        if (place && place->diskRotates) {
            ofDisk[place->volume].push_back(file);
        } else {
            others.push_back({file});
        }
    }
    std::vector<ReadLane> lanes;
    for (auto& [volume, lane] : ofDisk) {
        std::ranges::stable_sort(lane, {},
                                 [&](std::size_t file) { return placeOf(file)->position; });
        lanes.push_back(std::move(lane));
    }
    std::ranges::move(others, std::back_inserter(lanes));
    return lanes;
}

std::int64_t nextComparison(std::int64_t compared, std::int64_t length) {
    if (length <= inOneGo) return length;
    // In whole MiB: what is remembered of a file holds for these ends only.
    const std::int64_t next = compared < endOfDoubling
                                  ? std::max(mebibyte, 2 * compared)
                                  : compared + compared / 4 / mebibyte * mebibyte;
    return std::min(length, next);
}

}  // namespace velto
