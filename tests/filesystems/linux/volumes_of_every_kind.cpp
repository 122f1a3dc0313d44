#include "filesystems/linux/volumes_of_every_kind.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <ostream>

#include "support/linux/private_mounts.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

constexpr const char* smallSize = "16m";  // of a volume in memory, so that it can be filled

bool runs(const std::string& command) {
    return std::system(("PATH=$PATH:/usr/sbin:/sbin; " + command + " >/dev/null 2>&1").c_str()) ==
           0;
}

/// A volume in an image of its own.
std::string mountImage(const std::string& tool, const std::string& options, int megabytes,
                       const std::string& mountOptions, const std::string& folder,
                       const std::string& scratch) {
    if (!runs("command -v " + tool)) return tool + " is not installed";
    const std::string image = scratch + "/image";
    std::ofstream(image).close();
    fs::resize_file(image, static_cast<std::uintmax_t>(megabytes) * 1024 * 1024);
    if (!runs(tool + " " + options + " " + image)) return tool + " cannot make such a volume";
    if (!runs("mount -o loop" + mountOptions + " " + image + " " + folder)) {
        return "this kernel does not mount what " + tool + " " + options + " makes";
    }
    return "";
}

std::string mountCaseFolding(const std::string& folder, const std::string& scratch) {
    const std::string problem =
        mountImage("mkfs.ext4", "-q -O casefold -E encoding=utf8", 32, "", folder, scratch);
    if (!problem.empty()) return problem;
    return runs("chattr +F " + folder) ? "" : "this volume cannot ignore case";
}

std::string mountOverlay(const std::string& folder, const std::string& scratch) {
    if (!mountMemory(scratch, smallSize)) return "nothing can be mounted here";
    for (const char* part : {"/lower", "/upper", "/work"})
        fs::create_directories(scratch + part);
    const std::string options = "lowerdir=" + scratch + "/lower,upperdir=" + scratch +
                                "/upper,workdir=" + scratch + "/work";
    const bool isMounted = mount("overlay", folder.c_str(), "overlay", 0, options.c_str()) == 0;
    return isMounted ? "" : "this kernel lays no overlay here";
}

std::string mountBound(const std::string& folder, const std::string& scratch) {
    return bindTo(scratch, folder) ? "" : "folders cannot be bound here";
}

/// It lives as long as the process that has mounted it.
std::string mountPassing(const std::string& folder, const std::string& scratch,
                         const std::vector<std::string>& options) {
    static std::unique_ptr<PassingVolume> volume;
    volume = std::make_unique<PassingVolume>(scratch, folder, options);
    return volume->problem();
}

}  // namespace

void PrintTo(const VolumeKind& kind, std::ostream* stream) { *stream << kind.name; }

namespace {

VolumeKind likeFat(const char* name) {
    return {.name = name,
            .keepsLinks = false,
            .keepsModes = false,
            .keepsAttributes = false,
            .keepsHoles = false,
            .keepsAnyName = false,
            .tellsCaseApart = false};
}

}  // namespace

const std::vector<VolumeKind>& volumeKinds() {
    static const std::vector<VolumeKind> kinds{
        {.name = "tmpfs"},
        {.name = "ext4"},
        {.name = "xfs"},
        {.name = "btrfs"},
        {.name = "overlay"},
        {.name = "bound"},
        likeFat("vfat"),
        {.name = "ext4_casefold", .tellsCaseApart = false},
        {.name = "fuse", .keepsHoles = false},
        {.name = "fuse_plain_rename", .keepsHoles = false},
        {.name = "fuse_ignoring_case", .keepsHoles = false, .tellsCaseApart = false},
        likeFat("fuse_like_fat"),
        {.name = "fuse_like_apfs", .tellsCaseApart = false},
    };
    return kinds;
}

const VolumeKind& volumeKind(const std::string& name) {
    return *std::ranges::find(volumeKinds(), name, &VolumeKind::name);
}

std::string mountVolume(const VolumeKind& kind, const std::string& folder,
                        const std::string& scratch) {
    const std::string name = kind.name;
    if (name == "tmpfs") return mountMemory(folder, smallSize) ? "" : "nothing can be mounted here";
    if (name == "ext4") return mountImage("mkfs.ext4", "-q", 32, "", folder, scratch);
    if (name == "xfs") return mountImage("mkfs.xfs", "-q", 320, "", folder, scratch);
    if (name == "btrfs") return mountImage("mkfs.btrfs", "-q", 128, "", folder, scratch);
    if (name == "vfat") return mountImage("mkfs.vfat", "", 32, ",utf8", folder, scratch);
    if (name == "ext4_casefold") return mountCaseFolding(folder, scratch);
    if (name == "overlay") return mountOverlay(folder, scratch);
    if (name == "bound") return mountBound(folder, scratch);
    if (name == "fuse") return mountPassing(folder, scratch, {});
    if (name == "fuse_plain_rename") return mountPassing(folder, scratch, {"plain-rename"});
    if (name == "fuse_ignoring_case") return mountPassing(folder, scratch, {"ignores-case"});
    if (name == "fuse_like_apfs")
        return mountPassing(folder, scratch, {"folds-names", "text-names", "keeps-holes"});
    return mountPassing(
        folder, scratch,
        {"ignores-case", "no-links", "no-modes", "no-attributes", "coarse-times", "plain-names"});
}

PassingVolume::PassingVolume(std::string backing, std::string mountPoint,
                             std::vector<std::string> options)
    : mountPoint_(std::move(mountPoint)) {
    const std::string program = VELTO_PASSING_VOLUME;
    if (program.empty()) {
        problem_ = "libfuse3 was not there when the tests were built";
        return;
    }
    const std::string shared = backing + ".faults";
    std::ofstream(shared) << std::string(sizeof(VolumeFaults), '\0');
    const int file = open(shared.c_str(), O_RDWR | O_CLOEXEC);
    faults_ = static_cast<VolumeFaults*>(
        mmap(nullptr, sizeof(VolumeFaults), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
    close(file);
    std::vector<std::string> arguments{program, std::move(backing), mountPoint_, shared};
    arguments.insert(arguments.end(), options.begin(), options.end());
    std::vector<char*> values;
    for (std::string& argument : arguments)
        values.push_back(argument.data());
    values.push_back(nullptr);
    std::array<int, 2> mounted{};
    if (pipe2(mounted.data(), O_CLOEXEC) != 0) std::abort();
    process_ = fork();
    if (process_ == 0) {
        dup2(mounted[1], STDOUT_FILENO);
        execv(program.c_str(), values.data());
        _exit(127);
    }
    close(mounted[1]);
    char byte = 0;
    const bool isMounted = read(mounted[0], &byte, 1) == 1;
    close(mounted[0]);
    if (!isMounted) problem_ = "this user may not mount a volume that a program provides";
}

PassingVolume::~PassingVolume() {
    if (process_ > 0) {
        umount2(mountPoint_.c_str(), MNT_DETACH);
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    if (faults_ != nullptr) munmap(faults_, sizeof(VolumeFaults));
}

std::string withMountsOfItsOwn(const std::function<std::string()>& action) {
    std::array<int, 2> reasons{};
    if (pipe2(reasons.data(), O_CLOEXEC) != 0) std::abort();
    const InPrivate result = withPrivateMounts([&] {
        const std::string reason = action();
        const ssize_t written = write(reasons[1], reason.data(), reason.size());
        return reason.empty() && written == 0;
    });
    close(reasons[1]);
    std::string reason(1024, '\0');
    const ssize_t length = read(reasons[0], reason.data(), reason.size());
    close(reasons[0]);
    reason.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    if (result == InPrivate::notAllowed && reason.empty())
        reason = "this user may not mount anything";
    EXPECT_NE(result, InPrivate::failed) << "see above";
    return reason;
}

}  // namespace velto
