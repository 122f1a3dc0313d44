#include "support/linux/private_mounts.h"

#include <sched.h>
#include <sys/mount.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace velto {
namespace {

/// In a namespace of users of its own an ordinary user may mount. This user keeps its number there.
bool enterPrivateUsers() {
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream users("/proc/self/uid_map");
    std::ofstream groups("/proc/self/gid_map");
    users << user << ' ' << user << " 1" << std::flush;
    groups << group << ' ' << group << " 1" << std::flush;
    return users.good() && groups.good();
}

}  // namespace

bool enterPrivateMounts() {
    if (unshare(CLONE_NEWNS) != 0 && !enterPrivateUsers()) return false;
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool mountMemory(const std::string& folder, const std::string& size) {
    const std::string options = size.empty() ? "" : "size=" + size;
    return mount("tmpfs", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

bool bindTo(const std::string& what, const std::string& place) {
    return mount(what.c_str(), place.c_str(), nullptr, MS_BIND, nullptr) == 0;
}

bool layOverlay(const std::string& folder, const std::string& scratch) {
    if (!mountMemory(scratch)) return false;
    std::filesystem::create_directory(scratch + "/upper");
    std::filesystem::create_directory(scratch + "/work");
    const std::string options =
        "lowerdir=" + folder + ",upperdir=" + scratch + "/upper,workdir=" + scratch + "/work";
    return mount("overlay", folder.c_str(), "overlay", 0, options.c_str()) == 0;
}

bool mountBtrfs(const std::string& folder) {
    const std::string image = folder + ".image";
    std::ofstream(image).close();
    std::filesystem::resize_file(image, 256 * 1024 * 1024);
    const auto runs = [](const std::string& command) {
        return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
    };
    return runs("mkfs.btrfs -q " + image) && runs("mount -o loop " + image + " " + folder);
}

bool makeSubvolume(const std::string& folder) {
    return std::system(("btrfs subvolume create " + folder + " >/dev/null 2>&1").c_str()) == 0;
}

}  // namespace velto
