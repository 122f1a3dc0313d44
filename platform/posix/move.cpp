#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/posix/PosixFileManager.h"
#include "platform/posix/TreeCopy.h"
#include "platform/posix/clear_away.h"
#include "platform/posix/mounts.h"
#include "platform/posix/volume_move.h"

namespace velto {
namespace {

[[noreturn]] void fail(const Entry& entry, int reason = errno) {
    throw FileError("move", entry.path(), reason);
}

/// One move between volumes. The source is first copied, then renamed aside, so that nothing that
/// is looked up by its path can change any more, then compared with what was copied; only when the
/// copy stands in its place is the source removed.
class MoveBetweenVolumes {
public:
    MoveBetweenVolumes(PosixFileManager& files, FileCalls& calls, const Entry& source,
                       const Entry& target, const std::string& scratch)
        : files_(files),
          calls_(calls),
          source_(source),
          target_(target),
          aside_(source.parent, scratch),
          copy_(target.parent, scratch) {}

    void run() {
        try {
            bringToTarget();
        } catch (const FileError&) {
            bringBack();
            throw;
        }
        clearAway(files_, calls_, aside_);  // the item is moved whatever becomes of it
    }

private:
    enum class Progress { begun, copying, aside, inPlace };

    void bringToTarget() {
        // The scratch name should stand for nothing but what an earlier move of this item has left.
        struct stat status;
        if (isThere(calls_, copy_, status, "move")) clearCopy(files_, calls_, copy_, source_);
        if (isThere(calls_, copy_, status, "move")) fail(copy_, EEXIST);
        progress_ = Progress::copying;
        TreeCopy tree(calls_);
        tree.copy(source_, copy_);
        tree.requireUnchanged(source_, false);
        moveAside(calls_, source_, aside_);
        progress_ = Progress::aside;
        files_.sync(source_.parent);
        tree.requireUnchanged(aside_, true);
        moveWithinVolume(calls_, copy_, target_);
        progress_ = Progress::inPlace;
        files_.sync(target_.parent);
    }

    void bringBack() {
        try {
            if (progress_ == Progress::begun) return;
            if (progress_ == Progress::inPlace) moveAside(calls_, target_, copy_);
            if (progress_ != Progress::copying) moveWithinVolume(calls_, aside_, source_);
            // At the target it was there for all to use; before, it was this move's alone.
            if (progress_ == Progress::inPlace) return clearCopy(files_, calls_, copy_, source_);
            files_.removeAll(copy_.parent, copy_.name);
        } catch (const FileError&) {
            // `settleMove` does the rest; the first error tells what is wrong.
        }
    }

    PosixFileManager& files_;
    FileCalls& calls_;
    const Entry& source_;
    const Entry& target_;
    Entry aside_;
    Entry copy_;
    Progress progress_ = Progress::begun;
};

}  // namespace

bool PosixFileManager::moveAtOnce(const FolderHandle& from, const std::string& name,
                                  const FolderHandle& to, const std::string& newName) {
    return moveOnce(calls_, Entry(from, name), Entry(to, newName));
}

void PosixFileManager::moveInSteps(const FolderHandle& from, const std::string& name,
                                   const FolderHandle& to, const std::string& newName,
                                   const std::string& scratch) {
    const Entry source(from, name);
    const Entry target(to, newName);
    struct stat status;
    if (isThere(calls_, target, status, "move")) fail(target, EEXIST);
    if (!isThere(calls_, source, status, "move")) fail(source, ENOENT);
    const std::uint64_t mount = mountOf(calls_, source.folder(), "", "move", source.path());
    if (mountOf(calls_, source.folder(), name, "move", source.path()) != mount) {
        failMounted("move", source.path(), EBUSY);
    }
    if (S_ISDIR(status.st_mode)) {
        const PosixFolder moved(
            calls_,
            Descriptor(calls_.open(source.folder(), source.c_str(), passThrough | folderFlags, 0)),
            source.path());
        if (!moved.descriptor.isOpen()) fail(source);
        if (isAtOrBelow(to, moved)) fail(source, EINVAL);
    }
    if (mountOf(calls_, target.folder(), "", "move", target.path()) == mount &&
        moveStepwise(calls_, source, target, Entry(source.parent, scratch))) {
        return;
    }
    MoveBetweenVolumes(*this, calls_, source, target, scratch).run();
}

}  // namespace velto
