#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/FileContent.h"

namespace velto {

/// Files, by index, that are read one after another.
using ReadLane = std::vector<std::size_t>;

/// `files` in lanes that may be read at the same time. Of a disk that rotates all files are one
/// lane, in the order in which they lie there: it would spend its time on the way from one to the
/// other. Any other answers many at once as quickly as one; there each file is a lane, in the order
/// given. The disks that rotate, which take longest, come first.
std::vector<ReadLane> readLanes(
    const std::vector<std::size_t>& files,
    const std::function<const std::optional<FilePlace>&(std::size_t file)>& placeOf);

/// How many reads of a few bytes go on at once where the disk does not rotate: they are all
/// waiting. A drive takes 32 requests or more at a time (Serial ATA; NVMe thousands).
constexpr std::size_t smallReadsAtOnce = 16;

/// Up to where a file of `length` bytes that was compared with the others up to `compared` is read
/// next. Small ones in one go. Large ones to 1 MiB, twice as far each time up to 8 MiB, and from
/// there on by a quarter: so little more is read of a file that differs somewhere than has to be,
/// and 80 parts suffice for one of 16 TiB.
std::int64_t nextComparison(std::int64_t compared, std::int64_t length);

}  // namespace velto
