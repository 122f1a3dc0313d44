#include "filesystems/linux/SharingWorld.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <utility>

#include "platform/posix/CloneSharing.h"
#include "support/extended_attributes.h"
#include "support/linux/private_mounts.h"
#include "support/tree_text.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

const std::string& contentOf(unsigned seed, std::int64_t bytes) {
    static std::map<std::pair<unsigned, std::int64_t>, std::string> made;
    std::string& content = made[{seed, bytes}];
    if (content.empty()) {
        std::mt19937_64 numbers(seed);
        content.resize(static_cast<std::size_t>(bytes) + sizeof(std::uint64_t));
        for (std::size_t at = 0; at + sizeof(std::uint64_t) <= content.size(); at += 8) {
            const std::uint64_t number = numbers();
            std::memcpy(content.data() + at, &number, sizeof number);
        }
        content.resize(static_cast<std::size_t>(bytes));
    }
    return content;
}

}  // namespace

SharingWorld::SharingWorld(const VolumeKind& kind, Way way) {
    volume_ = base_.folder("volume");
    home = volume_ + "/home";
    const std::string scratch = base_.folder("scratch");
    if (!mountMemory(scratch)) {
        problem_ = "this user may not mount anything";
        return;
    }
    problem_ = mountVolume(kind, volume_, scratch);
    if (!problem_.empty()) return;
    fs::create_directories(home);
    platform.log = std::make_unique<FakeLog>();
    platform.files = std::make_unique<PosixFileManager>(calls);
    platform.mover = std::make_unique<PosixFileManager>(calls);
    if (way == Way::byRange) {
        platform.sharing = std::make_unique<RangeSharing>(calls);
    } else {
        platform.sharing = std::make_unique<CloneSharing>(calls);
        calls.openElsewhere = [] { return 0; };
        // A Mac's process leaves access times alone altogether.
        constexpr unsigned long quiet = MS_REMOUNT | MS_BIND | MS_NOATIME;
        EXPECT_EQ(mount(nullptr, volume_.c_str(), nullptr, quiet, nullptr), 0);
    }
    platform.layout = HomeLayout::macOS(home);
    platform.layout.dataFolder = base_.path("data");
}

std::string SharingWorld::file(const std::string& name, unsigned seed, std::int64_t bytes) const {
    const std::string file = path(name);
    fs::create_directories(fs::path(file).parent_path());
    std::ofstream(file, std::ios::binary) << contentOf(seed, bytes);
    const auto odd = static_cast<long>(std::hash<std::string>()(name) % 1000);
    EXPECT_TRUE(setExtendedAttribute(file, "user.note", "of " + name)) << file;
    if (geteuid() == 0) {
        EXPECT_EQ(chown(file.c_str(), 1000 + static_cast<uid_t>(odd), 7), 0) << file;
    }
    EXPECT_EQ(chmod(file.c_str(), odd % 2 == 0 ? 0640 : 0751), 0) << file;
    const timespec times[2] = {{1'500'000'000 + odd, 123'456'789},
                               {1'600'000'000 + odd, 987'654'321}};
    EXPECT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0) << file;
    return file;
}

SpaceSharing::Group SharingWorld::group() const {
    return {.kept = path("Documents/kept"),
            .copies = {path("Downloads/one"), path("Pictures/two")}};
}

std::string SharingWorld::everything() const {
    std::string text;
    for (const std::string& name : leavesBelow(home))
        text += name + ": " + treeText(path(name), TreeDetail::everything);
    return text;
}

std::string SharingWorld::contentAt(const std::string& path) {
    return treeText(path, TreeDetail::everything);
}

std::int64_t SharingWorld::freeBytes() const {
    // What a file gives up is free once the volume has written that down.
    const int folder = open(volume_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    EXPECT_EQ(syncfs(folder), 0);
    // Removed files are cleared away by and by; a volume that is frozen has nothing left to do.
    if (ioctl(folder, FIFREEZE, 0) == 0) ioctl(folder, FITHAW, 0);
    EXPECT_EQ(syncfs(folder), 0);
    close(folder);
    struct statvfs figures;
    EXPECT_EQ(statvfs(volume_.c_str(), &figures), 0);
    return static_cast<std::int64_t>(figures.f_bfree * figures.f_frsize);
}

std::int64_t SharingWorld::block() const {
    struct statvfs figures;
    EXPECT_EQ(statvfs(volume_.c_str(), &figures), 0);
    return static_cast<std::int64_t>(figures.f_bsize);
}

std::int64_t SharingWorld::sharedBytes(const std::string& path) {
    constexpr unsigned most = 1000;
    alignas(fiemap) std::array<char, sizeof(fiemap) + most * sizeof(fiemap_extent)> memory{};
    auto* const map = reinterpret_cast<fiemap*>(memory.data());
    map->fm_length = FIEMAP_MAX_OFFSET;
    map->fm_flags = FIEMAP_FLAG_SYNC;
    map->fm_extent_count = most;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(ioctl(file, FS_IOC_FIEMAP, map), 0) << path;
    close(file);
    const auto* const extents =
        reinterpret_cast<const fiemap_extent*>(memory.data() + sizeof(fiemap));
    std::int64_t bytes = 0;
    for (unsigned index = 0; index < map->fm_mapped_extents; ++index) {
        if ((extents[index].fe_flags & FIEMAP_EXTENT_SHARED) != 0) {
            bytes += static_cast<std::int64_t>(extents[index].fe_length);
        }
    }
    return bytes;
}

}  // namespace velto
