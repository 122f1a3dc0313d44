#include "support/linux/private_mounts.h"

#include <sched.h>
#include <sys/mount.h>

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

}  // namespace velto
