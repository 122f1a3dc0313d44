#include <sys/stat.h>

#include <cerrno>

#include "platform/posix/PosixFileManager.h"
#include "platform/posix/TreeComparison.h"
#include "platform/posix/clear_away.h"
#include "platform/posix/same_state.h"
#include "platform/posix/volume_move.h"

namespace velto {
namespace {

/// What a name stands for just now.
struct Found {
    Found(FileCalls& calls, const Entry& foundEntry)
        : entry(foundEntry), isThere(velto::isThere(calls, entry, status, "settle")) {}

    bool isSameAs(const Found& other) const {
        return isThere && other.isThere && isSameFile(status, other.status);
    }
    /// One file, no folder, under both names. On a volume that ignores case two spellings are one
    /// name.
    bool isSecondNameOf(const Found& other) const {
        return isSameAs(other) && !S_ISDIR(status.st_mode) && status.st_nlink > 1;
    }
    bool isPlaceholder() const {
        // Without the bits that a new folder takes over from the one that it is made in.
        return isThere && S_ISDIR(status.st_mode) && (status.st_mode & 0777) == placeholder;
    }

    const Entry entry;
    struct stat status {};
    bool isThere;
};

/// Restores order after a move that was cut off. The names come from what was written down, and
/// that proves nothing: whatever is cleared away is compared with what makes it superfluous first.
class Settlement {
public:
    Settlement(PosixFileManager& files, FileCalls& calls, const Entry& source, const Entry& target,
               const std::string& scratch)
        : files_(files),
          calls_(calls),
          source_(calls, source),
          aside_(calls, Entry(source.parent, scratch)),
          target_(calls, target),
          copy_(calls, Entry(target.parent, scratch)) {}

    MoveState run() {
        removePlaceholders();
        removeSecondNames();
        if (aside_.isThere) return copy_.isThere ? decide() : endRemoval();
        if (copy_.isThere && source_.isThere) {
            clearCopy(files_, calls_, copy_.entry, source_.entry);
        }
        if (source_.isSecondNameOf(target_)) {
            remove(source_);
            return MoveState::atTarget;
        }
        if (source_.isThere) return MoveState::atSource;
        return target_.isThere ? MoveState::atTarget : MoveState::nowhere;
    }

private:
    /// A name that is held for a folder which has not come.
    void removePlaceholders() {
        if (source_.isThere) removePlaceholder(aside_);
        if (source_.isThere || aside_.isThere || target_.isThere) removePlaceholder(copy_);
        if (source_.isThere || aside_.isThere || copy_.isThere) removePlaceholder(target_);
        if (aside_.isThere) removePlaceholder(source_);
    }

    void removePlaceholder(Found& found) {
        if (!found.isPlaceholder()) return;
        if (!files_.removeEmptyFolder(found.entry.parent, found.entry.name)) return;
        found.isThere = false;
        files_.sync(found.entry.parent);  // nobody would know it for what it is later
    }

    /// A file that has its new name already and its old one besides.
    void removeSecondNames() {
        if (aside_.isSecondNameOf(source_)) remove(aside_);
        if (copy_.isSecondNameOf(target_)) remove(copy_);
        if (aside_.isSecondNameOf(target_)) remove(aside_);
    }

    /// The copy is not in its place yet: back to how it was. Where something new has taken that
    /// place, the copy is complete (it was before its original was put aside): forward.
    MoveState decide() {
        if (!source_.isThere) {
            putBack();
            clearCopy(files_, calls_, copy_.entry, source_.entry);
            return MoveState::atSource;
        }
        if (target_.isThere || !TreeComparison(calls_).areAlike(aside_.entry, copy_.entry)) {
            throw FileError("move", source_.entry.path(), EEXIST);
        }
        moveWithinVolume(calls_, copy_.entry, target_.entry);
        files_.sync(target_.entry.parent);
        clearAway(files_, calls_, aside_.entry);
        return MoveState::atTarget;
    }

    /// The copy is in its place, unless somebody has taken it away or put something else there:
    /// then the original is all there is, and it goes back.
    MoveState endRemoval() {
        const bool hasArrived =
            target_.isThere && TreeComparison(calls_).isHeldBy(aside_.entry, target_.entry);
        if (hasArrived) {
            clearAway(files_, calls_, aside_.entry);
        } else if (!source_.isThere) {
            putBack();
            return MoveState::atSource;
        } else {
            leaveBehind(calls_, aside_.entry);  // all three are different things: all three stay
        }
        return target_.isThere ? MoveState::atTarget : MoveState::atSource;
    }

    /// On the disk before anybody forgets that it was put aside.
    void putBack() {
        moveWithinVolume(calls_, aside_.entry, source_.entry);
        files_.sync(source_.entry.parent);
    }

    /// A second name must go before anything else is decided. The name alone: a folder that has
    /// taken its place meanwhile stays.
    void remove(Found& found) {
        if (calls_.remove(found.entry.folder(), found.entry.c_str(), 0) != 0 && errno != ENOENT) {
            throw FileError("remove", found.entry.path(), errno);
        }
        found.isThere = false;
        files_.sync(found.entry.parent);
    }

    PosixFileManager& files_;
    FileCalls& calls_;
    Found source_;
    Found aside_;
    Found target_;
    Found copy_;
};

}  // namespace

MoveState PosixFileManager::settleMove(const FolderHandle& from, const std::string& name,
                                       const FolderHandle& to, const std::string& newName,
                                       const std::string& scratch) {
    const Entry source(from, name);
    const Entry target(to, newName);
    if (scratch == name || scratch == newName) throw FileError("settle", source.path(), EINVAL);
    return Settlement(*this, calls_, source, target, scratch).run();
}

}  // namespace velto
