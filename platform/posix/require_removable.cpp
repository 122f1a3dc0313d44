#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "platform/posix/Descriptor.h"
#include "platform/posix/FileCalls.h"
#include "platform/posix/PosixFolder.h"
#include "platform/posix/names_in_folder.h"
#include "platform/removal_check.h"

namespace velto {
namespace {

constexpr std::size_t mostLevels = 200;  // deeper folders are not looked at: each stays open

/// Looks through a tree for what would stop its removal half-way.
class RemovalCheck {
public:
    RemovalCheck(FileCalls& calls, dev_t device, std::string path)
        : calls_(calls), device_(device), path_(std::move(path)) {}

    void run(int parent, const std::string& name) {
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
            if (errno == ENOENT) return;  // gone meanwhile
            fail(name, errno);
        }
        if (!S_ISDIR(status.st_mode)) return;
        if (status.st_dev != device_) fail(name, EBUSY);
        if (levels_.size() < mostLevels) enter(parent, name, status);
    }

    void enter(int parent, const std::string& name, const struct stat& status) {
        // What the user owns can be opened up before it is removed.
        const bool isOwn = status.st_uid == ::geteuid();
        Descriptor folder(calls_.open(parent, name.c_str(), O_RDONLY | folderFlags, 0));
        if (!folder.isOpen()) {
            if (errno == EACCES && !isOwn) fail(name, EACCES);
            return;  // swapped for something else, or no descriptors left: removing will tell
        }
        Descriptor listing(calls_.open(folder.number(), ".", O_RDONLY | folderFlags, 0));
        if (!listing.isOpen()) return;
        auto names = namesInFolder(std::move(listing));
        if (!names || names->empty()) return;
        if (!isOwn && ::faccessat(folder.number(), ".", W_OK | X_OK, AT_EACCESS) != 0) {
            fail(name, EACCES);
        }
        levels_.push_back({name, std::move(folder), std::move(*names)});
    }

    [[noreturn]] void fail(const std::string& name, int reason) const {
        std::string place = path_;
        for (const Level& level : levels_)
            place += "/" + level.name;
        throw FileError("remove", place + "/" + name, reason);
    }

    FileCalls& calls_;
    dev_t device_;
    std::string path_;  // of the folder that holds the item; for errors alone
    std::vector<Level> levels_;
};

}  // namespace

void requireRemovable(const FolderHandle& parent, const std::string& name) {
    FileCalls& calls = systemFileCalls();
    const Entry entry(parent, name);
    struct stat status;
    if (calls.status(entry.folder(), status) != 0) {
        throw FileError("examine", entry.path(), errno);
    }
    RemovalCheck(calls, status.st_dev, posix(parent).path).run(entry.folder(), name);
}

}  // namespace velto
