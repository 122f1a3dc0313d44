#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/posix/PosixFileManager.h"
#include "platform/posix/TreeCopy.h"
#include "platform/posix/same_state.h"

namespace velto {
namespace {

/// A folder made just to hold a name until the real one is renamed onto it. Nobody else makes
/// folders that allow nothing.
constexpr mode_t placeholder = 0;

[[noreturn]] void fail(const Entry& entry, int reason = errno) {
    throw FileError("move", entry.path(), reason);
}

bool isUnsupported(int reason) {
    return reason == EXDEV || reason == EINVAL || reason == ENOTSUP || reason == EOPNOTSUPP ||
           reason == ENOSYS;
}

/// A file gets its new name before it loses the old one; either name is the whole file.
bool moveByNames(FileCalls& calls, const Entry& from, const Entry& to) {
    if (calls.addName(from.folder(), from.c_str(), to.folder(), to.c_str()) != 0) {
        if (isUnsupported(errno) || errno == EPERM || errno == EMLINK) return false;
        fail(from);
    }
    if (calls.remove(from.folder(), from.c_str(), 0) == 0) return true;
    const int reason = errno;
    calls.remove(to.folder(), to.c_str(), 0);
    fail(from, reason);
}

/// A folder takes the place of an empty one that was made for it.
bool moveOntoPlaceholder(FileCalls& calls, const Entry& from, const Entry& to) {
    if (calls.makeFolder(to.folder(), to.c_str(), placeholder) != 0) fail(to);
    if (calls.replace(from.folder(), from.c_str(), to.folder(), to.c_str()) == 0) return true;
    const int reason = errno;
    calls.remove(to.folder(), to.c_str(), AT_REMOVEDIR);
    if (reason == EXDEV) return false;
    fail(from, reason);
}

bool moveOnce(FileCalls& calls, const Entry& from, const Entry& to) {
    if (calls.rename(from.folder(), from.c_str(), to.folder(), to.c_str()) == 0) return true;
    if (isUnsupported(errno)) return false;
    fail(from);
}

/// Moves within a volume that cannot rename without replacing. False when it is not one volume.
bool moveStepwise(FileCalls& calls, const Entry& from, const Entry& to) {
    struct stat status;
    if (!isThere(calls, from, status, "move")) fail(from, ENOENT);
    return S_ISDIR(status.st_mode) ? moveOntoPlaceholder(calls, from, to)
                                   : moveByNames(calls, from, to);
}

void moveWithinVolume(FileCalls& calls, const Entry& from, const Entry& to) {
    if (!moveOnce(calls, from, to) && !moveStepwise(calls, from, to)) fail(from, ENOTSUP);
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
        removeAside();
    }

private:
    enum class Progress { copying, aside, inPlace };

    void bringToTarget() {
        TreeCopy tree(calls_);
        tree.copy(source_, copy_);
        tree.requireUnchanged(source_, false);
        moveWithinVolume(calls_, source_, aside_);
        progress_ = Progress::aside;
        files_.sync(source_.parent);
        tree.requireUnchanged(aside_, true);
        moveWithinVolume(calls_, copy_, target_);
        progress_ = Progress::inPlace;
        files_.sync(target_.parent);
    }

    void bringBack() {
        try {
            if (progress_ == Progress::inPlace) moveWithinVolume(calls_, target_, copy_);
            if (progress_ != Progress::copying) moveWithinVolume(calls_, aside_, source_);
            files_.removeAll(copy_.parent, copy_.name);
        } catch (const FileError&) {
            // `settleMove` does the rest; the first error tells what is wrong.
        }
    }

    void removeAside() {
        for (int attempt = 0; attempt < 2; ++attempt) {
            try {
                files_.removeAll(aside_.parent, aside_.name);
                files_.sync(aside_.parent);
                return;
            } catch (const FileError&) {
                // The item is moved; what resists a second attempt stays under the scratch name.
            }
        }
    }

    PosixFileManager& files_;
    FileCalls& calls_;
    const Entry& source_;
    const Entry& target_;
    Entry aside_;
    Entry copy_;
    Progress progress_ = Progress::copying;
};

/// What a name stands for just now.
struct Found {
    Found(FileCalls& calls, const Entry& foundEntry)
        : entry(foundEntry), isThere(velto::isThere(calls, entry, status, "settle")) {}

    bool isSameAs(const Found& other) const {
        return isThere && other.isThere && isSameFile(status, other.status);
    }
    bool isPlaceholder() const {
        return isThere && S_ISDIR(status.st_mode) && (status.st_mode & 07777) == placeholder;
    }

    const Entry& entry;
    struct stat status {};
    bool isThere;
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
    struct stat folder;
    if (isThere(calls_, target, status, "move")) fail(target, EEXIST);
    if (!isThere(calls_, source, status, "move")) fail(source, ENOENT);
    if (calls_.status(source.folder(), folder) != 0) fail(source);
    if (status.st_dev != folder.st_dev) fail(source, EBUSY);  // a volume is mounted there
    if (S_ISDIR(status.st_mode)) {
        const PosixFolder moved(
            Descriptor(calls_.open(source.folder(), source.c_str(), passThrough | folderFlags, 0)),
            source.path());
        if (!moved.descriptor.isOpen()) fail(source);
        if (isAtOrBelow(to, moved)) fail(source, EINVAL);
    }
    if (calls_.status(target.folder(), folder) != 0) fail(target);
    if (status.st_dev == folder.st_dev && moveStepwise(calls_, source, target)) return;
    MoveBetweenVolumes(*this, calls_, source, target, scratch).run();
}

MoveState PosixFileManager::settleMove(const FolderHandle& from, const std::string& name,
                                       const FolderHandle& to, const std::string& newName,
                                       const std::string& scratch) {
    const Entry sourceEntry(from, name);
    const Entry targetEntry(to, newName);
    const Entry asideEntry(from, scratch);
    const Entry copyEntry(to, scratch);
    const Found source(calls_, sourceEntry);
    const Found aside(calls_, asideEntry);
    Found target(calls_, targetEntry);
    Found copy(calls_, copyEntry);

    if (target.isPlaceholder() && (source.isThere || aside.isThere || copy.isThere)) {
        if (removeEmptyFolder(to, newName)) target.isThere = false;
    }
    if (copy.isSameAs(target)) {  // the copy has its place, and its scratch name besides
        removeAll(to, scratch);
        copy.isThere = false;
    }
    if (aside.isThere && copy.isThere) {
        // The copy is not in its place yet: back to how it was. Where something new has taken that
        // place, the copy is complete (it was before its original was put aside): forward.
        if (source.isThere) {
            if (target.isThere || !TreeCopy(calls_).areAlike(asideEntry, copyEntry)) {
                fail(sourceEntry, EEXIST);
            }
            moveWithinVolume(calls_, copyEntry, targetEntry);
            sync(to);
            removeAll(from, scratch);
            return MoveState::atTarget;
        }
        moveWithinVolume(calls_, asideEntry, sourceEntry);
        removeAll(to, scratch);
        return MoveState::atSource;
    }
    if (aside.isThere) {
        if (!target.isThere) {  // somebody has taken the copy away: the original is all there is
            moveWithinVolume(calls_, asideEntry, sourceEntry);
            return MoveState::atSource;
        }
        removeAll(from, scratch);
        return MoveState::atTarget;
    }
    if (copy.isThere && source.isThere) removeAll(to, scratch);  // cut off while copying
    if (source.isSameAs(target) && !S_ISDIR(source.status.st_mode)) {
        removeAll(from, name);  // both names of one file
        return MoveState::atTarget;
    }
    if (source.isThere) return MoveState::atSource;
    return target.isThere ? MoveState::atTarget : MoveState::nowhere;
}

}  // namespace velto
