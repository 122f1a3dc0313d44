#include "platform/linux/disk_statistics.h"

#include <unistd.h>

#include <algorithm>

#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

constexpr std::uint64_t bytesPerSector = 512;  // in these files, whatever the disk's own are
// No disk has moved more, and the bytes of thousands of disks can be added up.
constexpr std::uint64_t mostSectors = std::uint64_t{1} << 42;

std::uint64_t bytesIn(std::string_view sectors) {
    return std::min(unsignedNumber(sectors), mostSectors) * bytesPerSector;
}

}  // namespace

std::vector<DiskCounters> disksIn(std::string_view diskstats) {
    std::vector<DiskCounters> disks;
    while (!diskstats.empty()) {
        std::string_view line = nextLine(diskstats);
        const auto skip = [&line](int words) {
            for (int word = 0; word < words; ++word)
                nextWord(line);
        };
        skip(2);  // the device's numbers
        DiskCounters one{.name = std::string(nextWord(line))};
        skip(2);  // reads, and those that were joined
        one.read = bytesIn(nextWord(line));
        skip(3);  // the time of reading, writes, and those that were joined
        const std::string_view written = nextWord(line);
        if (written.empty()) continue;
        one.written = bytesIn(written);
        disks.push_back(std::move(one));
    }
    return disks;
}

bool DiskChoice::isHardware(const std::string& name) const {
    std::string entry = name;
    std::ranges::replace(entry, '/', '!');  // as sysfs writes it
    const std::string folder = sys_ + "/block/" + entry;
    // Partitions have no folder there; one path of several to a disk is hidden behind the disk.
    return ::access((folder + "/device").c_str(), F_OK) == 0 &&
           kernelNumber(folder + "/hidden").value_or(0) == 0;
}

std::optional<std::vector<DiskCounters>> DiskChoice::of(std::vector<DiskCounters> all) {
    std::vector<std::string> names;
    names.reserve(all.size());
    for (const DiskCounters& one : all)
        names.push_back(one.name);
    if (!canTell_ || names != known_) {
        canTell_ = ::access((sys_ + "/block").c_str(), F_OK) == 0;
        counting_.clear();
        for (const std::string& name : names) {
            if (isHardware(name)) counting_.push_back(name);
        }
        known_ = std::move(names);
    }
    if (!canTell_) return std::nullopt;
    std::erase_if(all, [this](const DiskCounters& one) {
        return std::ranges::find(counting_, one.name) == counting_.end();
    });
    return all;
}

}  // namespace velto
