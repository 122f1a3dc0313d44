#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "platform/posix/Descriptor.h"
#include "platform/posix/FileCalls.h"
#include "platform/posix/PosixFolder.h"
#include "platform/posix/mounts.h"
#include "platform/removal_check.h"

namespace velto {
namespace {

constexpr std::size_t mostLevels = 200;  // deeper folders are not looked at: each stays open

enum class Asked { mounts, mountsAndRights };

/// Looks through a tree for what would stop its removal half-way.
class RemovalCheck {
public:
    RemovalCheck(FileCalls& calls, Asked asked, std::string path)
        : calls_(calls), asked_(asked), path_(std::move(path)) {}

    void run(int parent, const std::string& name) {
        mount_ = mountOf(calls_, parent, "", "remove", path_);
        mayHoldMount_ = calls_.mayHoldMount(parent, name.c_str());
        look(parent, name);
        while (!levels_.empty()) {
            std::vector<std::string>& names = levels_.back().names;
            if (names.empty()) {
                levels_.pop_back();
                continue;
            }
            const std::string next = std::move(names.back());
            names.pop_back();
            look(levels_.back().folder.number(), next);
        }
    }

private:
    struct Level {
        std::string name;
        Descriptor folder;
        std::vector<std::string> names;  // still to be looked at
    };

    void look(int parent, const std::string& name) {
        struct stat status;
        if (calls_.stat(parent, name.c_str(), status) != 0) {
            if (errno == ENOENT || asked_ == Asked::mounts) return;  // gone meanwhile
            fail(name, errno);
        }
        requireOwnMount(parent, name);
        if (!S_ISDIR(status.st_mode)) return;
        if (levels_.size() < mostLevels) enter(parent, name, status);
    }

    void requireOwnMount(int folder, const std::string& name) const {
        std::uint64_t mount = mount_;
        if (!mayHoldMount_) return;
        if (calls_.mount(folder, name.c_str(), mount) != 0 || mount == mount_) return;
        failMounted("remove", placeOf(name), asked_ == Asked::mounts ? EXDEV : EBUSY);
    }

    void enter(int parent, const std::string& name, const struct stat& status) {
        // What the user owns can be opened up before it is removed. Removing tells of the rest.
        const bool isOwn = asked_ == Asked::mounts || status.st_uid == ::geteuid();
        Descriptor folder(calls_.open(parent, name.c_str(), O_RDONLY | folderFlags, 0));
        if (!folder.isOpen()) {
            if (errno == EACCES && !isOwn) fail(name, EACCES);
            return;  // swapped for something else, or no descriptors left: removing will tell
        }
        requireOwnMount(folder.number(), "");  // the system may mount what is entered
        Descriptor listing(calls_.open(folder.number(), ".", O_RDONLY | folderFlags, 0));
        if (!listing.isOpen()) return;
        std::vector<std::string> names;
        if (calls_.names(std::move(listing), names) != 0 || names.empty()) return;
        if (!isOwn && ::faccessat(folder.number(), ".", W_OK | X_OK, AT_EACCESS) != 0) {
            fail(name, EACCES);
        }
        levels_.push_back({name, std::move(folder), std::move(names)});
    }

    std::string placeOf(const std::string& name) const {
        std::string place = path_;
        for (const Level& level : levels_)
            place += "/" + level.name;
        return name.empty() ? place : place + "/" + name;
    }

    [[noreturn]] void fail(const std::string& name, int reason) const {
        throw FileError("remove", placeOf(name), reason);
    }

    FileCalls& calls_;
    Asked asked_;
    std::uint64_t mount_ = 0;   // of the folder that holds the item
    bool mayHoldMount_ = true;  // inside the item
    std::string path_;          // of the folder that holds the item; for errors alone
    std::vector<Level> levels_;
};

}  // namespace

void requireRemovable(const FolderHandle& parent, const std::string& name) {
    FileCalls& calls = posix(parent).calls;
    const Entry entry(parent, name);
    RemovalCheck(calls, Asked::mountsAndRights, posix(parent).path).run(entry.folder(), name);
}

void requireMovable(const FolderHandle& parent, const std::string& name) {
    const PosixFolder& folder = posix(parent);
    const Entry entry(parent, name);
    if (::faccessat(entry.folder(), ".", W_OK | X_OK, AT_EACCESS) != 0) {
        throw FileError("move", folder.path + "/" + name, errno);
    }
    requireNoMounts(folder.calls, entry.folder(), name, folder.path);
}

void requireNoMounts(FileCalls& calls, int parent, const std::string& name,
                     const std::string& path) {
    RemovalCheck(calls, Asked::mounts, path).run(parent, name);
}

}  // namespace velto
