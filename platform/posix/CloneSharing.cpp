#include "platform/posix/CloneSharing.h"

#include <fcntl.h>

#include <cerrno>

#include "platform/posix/TreeComparison.h"
#include "platform/posix/same_state.h"
#include "platform/values/scratch_name.h"

namespace velto {
namespace {

constexpr const char* sharing = "share";
constexpr unsigned compressedFlag = 0x20;  // of chflags(2) of macOS

[[noreturn]] void failSharing(const std::string& path, int reason = errno) {
    throw FileError(sharing, path, reason);
}

/// What a clone cannot take the place of.
void requireReplaceable(const PosixSharedFile& file) {
    const struct stat status = file.status();
    if (status.st_nlink > 1) failSharing(file.path(), EMLINK);
    if (isLocked(status)) failSharing(file.path(), EPERM);
    // What makes it readable lies in its attributes.
    if ((flagsOf(status) & compressedFlag) != 0) failSharing(file.path(), ENOTSUP);
}

}  // namespace

/// What stands, or is to stand, under the scratch name.
struct CloneSharing::Clone {
    Entry aside;
    Entry place;            // of the copy
    struct stat status {};  // of the clone, once it is made
};

void CloneSharing::requireSharable(SharedFile& kept, SharedFile& copy) {
    PosixBlockSharing::requireSharable(kept, copy);
    requireReplaceable(own(copy));
    if ((flagsOf(own(kept).status()) & compressedFlag) != 0) {
        failSharing(own(kept).path(), ENOTSUP);
    }
    if (!isIdle(own(copy))) failSharing(own(copy).path(), EBUSY);
}

bool CloneSharing::isIdle(const PosixSharedFile& copy) {
    const int isOpen = calls_.isOpenElsewhere(copy.number());
    if (isOpen < 0) failSharing(copy.path());
    return isOpen == 0;
}

BlockSharing::End CloneSharing::share(SharedFile& keptFile, SharedFile& copyFile,
                                      const std::string& scratch, const Progress& progress) {
    const PosixSharedFile& kept = own(keptFile);
    const PosixSharedFile& copy = own(copyFile);
    if (!isScratchName(scratch)) failSharing(copy.path(), EINVAL);
    requireReplaceable(copy);
    const struct stat before = copy.status();
    if (kept.status().st_size != before.st_size) return End::differs;
    Clone clone{.aside = Entry(copy.folder(), scratch), .place = Entry(copy.folder(), copy.name())};
    make(kept, clone);
    try {
        dress(copy, clone);
        if (!TreeComparison(calls_).areAlike(clone.aside, clone.place)) {
            discard(clone);
            return End::differs;
        }
        if (progress && !progress(0)) {
            discard(clone);
            return End::stopped;
        }
        takePlace(copy, before, clone);
    } catch (const FileError&) {
        discard(clone);
        throw;
    }
    if (progress) progress(before.st_size);
    return End::shared;
}

void CloneSharing::make(const PosixSharedFile& kept, const Clone& clone) {
    const Entry& aside = clone.aside;
    if (calls_.cloneTo(kept.number(), aside.folder(), aside.c_str()) != 0) {
        failSharing(clone.place.path());
    }
}

/// Gives the clone all that the copy has besides its content.
void CloneSharing::dress(const PosixSharedFile& copy, Clone& clone) {
    const std::string path = clone.place.path();
    constexpr int flags = O_RDWR | O_NOFOLLOW | O_CLOEXEC;
    const Descriptor made(calls_.open(clone.aside.folder(), clone.aside.c_str(), flags, 0));
    if (!made.isOpen()) failSharing(path);
    const int from = copy.number();
    const int to = made.number();
    const struct stat status = copy.status();
    if (calls_.copyAttributes(from, to) != 0 ||
        calls_.changeOwner(to, status.st_uid, status.st_gid) != 0 ||
        calls_.changeMode(to, status.st_mode & 07777) != 0) {
        failSharing(path);
    }
    const timespec times[2] = {accessedTime(status), modifiedTime(status)};
    if (calls_.setTimes(to, times) != 0) failSharing(path);
    calls_.copyBirthTime(from, to);  // not every volume keeps one, and none is worth a failure
    if (calls_.copyAccess(from, to) != 0 || calls_.sync(to) != 0 ||
        calls_.status(to, clone.status) != 0) {
        failSharing(path);
    }
    // What is given away, or gets an access list, may end up with other rights.
    const struct stat& now = clone.status;
    if (now.st_uid != status.st_uid || now.st_gid != status.st_gid ||
        now.st_mode != status.st_mode || !isSameTime(modifiedTime(now), modifiedTime(status))) {
        failSharing(path, EPERM);
    }
}

/// Exchanges the two, and looks whether it was the right one that has left its place, as it was and
/// with nobody at it. Else they change back.
void CloneSharing::takePlace(const PosixSharedFile& copy, const struct stat& before,
                             const Clone& clone) {
    const Entry& aside = clone.aside;
    const Entry& place = clone.place;
    const auto exchange = [&] {
        return calls_.exchange(aside.folder(), aside.c_str(), place.folder(), place.c_str());
    };
    struct stat status;
    if (calls_.stat(place.folder(), place.c_str(), status) != 0) failSharing(place.path());
    if (!isSameState(before, status) || !isIdle(copy)) failSharing(place.path(), EBUSY);
    // A failure may have been reported of what was done all the same.
    const bool isRefused = exchange() != 0;
    const int reason = errno;
    if (calls_.stat(aside.folder(), aside.c_str(), status) != 0) failSharing(place.path());
    if (isSameFile(status, clone.status)) failSharing(place.path(), isRefused ? reason : EIO);
    if (!isUnmodified(before, status) || !isIdle(copy)) {
        if (exchange() != 0) failSharing(place.path());
        failSharing(place.path(), EBUSY);
    }
    settle(copy.folder(), copy.name(), aside.name);
}

/// Removes the clone while it has not taken the copy's place. Where that fails it stays under its
/// scratch name, and `settle` has to come later.
void CloneSharing::discard(const Clone& clone) {
    struct stat status;
    const Entry& aside = clone.aside;
    if (calls_.stat(aside.folder(), aside.c_str(), status) != 0) return;
    struct stat place;
    if (calls_.stat(clone.place.folder(), clone.place.c_str(), place) != 0) return;
    const bool isMade = clone.status.st_ino != 0;
    // Before its number was known nothing can have taken it for the copy.
    if (isMade ? isSameFile(status, clone.status) : !isSameFile(status, place)) {
        calls_.remove(aside.folder(), aside.c_str(), 0);
    }
}

/// The new name is on the disk before the old content goes, and that only while its like stands in
/// the copy's place.
void CloneSharing::settle(const FolderHandle& folder, const std::string& name,
                          const std::string& scratch) {
    if (!isScratchName(scratch)) throw FileError(sharing, scratch, EINVAL);
    const Entry aside(folder, scratch);
    const Entry place(folder, name);
    struct stat left;
    struct stat held;
    if (!isThere(calls_, aside, left, sharing)) return;
    if (!isThere(calls_, place, held, sharing) || !S_ISREG(left.st_mode) ||
        isSameFile(left, held) || !TreeComparison(calls_).isBegunCopyOf(aside, place)) {
        failSharing(aside.path(), EEXIST);
    }
    if (syncNames(calls_, number(folder)) != 0) failSharing(place.path());
    if (calls_.remove(aside.folder(), aside.c_str(), 0) != 0) failSharing(aside.path());
}

}  // namespace velto
