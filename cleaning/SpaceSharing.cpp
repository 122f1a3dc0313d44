#include "cleaning/SpaceSharing.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

#include "cleaning/SharingJournal.h"
#include "cleaning/TrashGuard.h"
#include "platform/values/scratch_name.h"
#include "platform/values/units.h"
#include "platform/values/uuid.h"

namespace velto {
namespace {

using Why = SpaceSharing::Reason;

/// Why a file is not used.
struct Stays {
    Why reason;
    std::string detail{};
};

struct OpenFile {
    HeldPlace place;  // outlives the file
    std::unique_ptr<SharedFile> file;
    FileStamp stamp;
};

Why reasonFor(const FileError& error) {
    switch (error.code()) {
        case ENOENT:
        case ENOTDIR:
        case ELOOP:
            return Why::gone;
        case EXDEV:
            return Why::otherDisk;
        case ENOTSUP:
        case EINVAL:
            return Why::cannot;
        case EMLINK:
            return Why::linked;
        case EPERM:
        case EACCES:
        case EROFS:
            return Why::closed;
        case ETXTBSY:
        case EBUSY:
            return Why::inUse;
        default:
            return Why::other;
    }
}

/// Files of one group, opened by the rules of the trash: what those would not take away is not
/// touched, and what is opened is what they have judged.
class Opener {
public:
    Opener(const Platform& platform, double compared)
        : sharing_(*platform.sharing),
          guard_(*platform.files, *platform.mover, platform.layout),
          compared_(compared) {}

    /// Throws Stays.
    OpenFile open(const std::string& path) const {
        try {
            auto admitted = guard_.admit(path, {});
            OpenFile file{.place = std::move(admitted.place), .file = nullptr, .stamp = {}};
            file.file = sharing_.open(*file.place.folder, file.place.name);
            file.stamp = file.file->stamp();
            if (file.stamp.identity != admitted.attributes.identity) throw Stays{Why::changed};
            if (momentOf(0, file.stamp.modified) > compared_) {
                throw Stays{Why::changed};
            }
            return file;
        } catch (const TrashError& error) {
            const bool isGone = error.reason() == TrashError::Reason::notFound;
            throw Stays{isGone ? Why::gone : Why::refused};
        } catch (const FileError& error) {
            throw Stays{reasonFor(error), error.what()};
        }
    }

private:
    BlockSharing& sharing_;
    TrashGuard guard_;
    double compared_;
};

/// The space that a copy holds alone; 0 and not exact where nobody says.
OwnSpace spaceOf(SharedFile& file) {
    try {
        return file.ownSpace();
    } catch (const FileError&) {
        return {.bytes = 0, .isExact = false};
    }
}

/// Takes a group's copies one after another; `act` gets each that can share.
template <typename Act>
std::vector<SpaceSharing::Copy> eachCopy(const Platform& platform, const SpaceSharing::Group& group,
                                         double compared, Act act) {
    const Opener opener(platform, compared);
    std::vector<SpaceSharing::Copy> result;
    std::optional<OpenFile> kept;
    try {
        kept = opener.open(group.kept);
    } catch (const Stays& stays) {
        for (const std::string& path : group.copies)
            result.push_back({.path = path, .stays = Why::keptFile, .detail = stays.detail});
        return result;
    }
    std::vector<FileIdentity> known{kept->stamp.identity};
    for (const std::string& path : group.copies) {
        SpaceSharing::Copy copy{.path = path, .stays = {}, .detail = {}};
        bool goesOn = true;
        try {
            const OpenFile file = opener.open(path);
            if (std::ranges::find(known, file.stamp.identity) != known.end()) {
                throw Stays{Why::linked};
            }
            known.push_back(file.stamp.identity);
            if (file.stamp.length != kept->stamp.length) throw Stays{Why::changed};
            platform.sharing->requireSharable(*kept->file, *file.file);
            if (platform.sharing->isOneWith(*kept->file, *file.file)) throw Stays{Why::one};
            goesOn = act(*kept, file, copy);
        } catch (const Stays& stays) {
            copy.stays = stays.reason;
            copy.detail = stays.detail;
        } catch (const FileError& error) {
            copy.stays = reasonFor(error);
            copy.detail = error.what();
        }
        if (!goesOn && !copy.stays) break;  // not begun
        result.push_back(std::move(copy));
        if (!goesOn) break;
    }
    return result;
}

/// Throws FileError: EBUSY while an earlier one that was cut off cannot be settled.
BlockSharing::End shareOne(const Platform& platform, const OpenFile& kept, const OpenFile& copy,
                           const std::string& path, const BlockSharing::Progress& tell) {
    BlockSharing& sharing = *platform.sharing;
    const std::string scratch = scratchName(newUUID());
    if (!sharing.usesScratch()) return sharing.share(*kept.file, *copy.file, scratch, tell);
    const SharingJournal journal(platform);
    if (!journal.settle()) throw FileError("share", path, EBUSY);
    journal.begin(path, scratch);
    const auto end = sharing.share(*kept.file, *copy.file, scratch, tell);
    journal.end();
    return end;
}

/// What has come back by now, whatever then stops it.
void noteSpace(const OwnSpace& before, SharedFile& file, SpaceSharing::Copy& copy) {
    const OwnSpace after = spaceOf(file);
    copy.space = {.bytes = std::max<std::int64_t>(0, before.bytes - after.bytes),
                  .isExact = before.isExact && after.isExact};
}

}  // namespace

std::vector<SpaceSharing::Copy> SpaceSharing::foretell(const Group& group, double compared) const {
    return eachCopy(platform_, group, compared,
                    [](const OpenFile&, const OpenFile& file, Copy& copy) {
                        copy.space = spaceOf(*file.file);
                        return true;
                    });
}

std::vector<SpaceSharing::Copy> SpaceSharing::share(const Group& group, double compared,
                                                    const std::function<bool()>& stopped,
                                                    const Progress& progress) const {
    const auto isStopped = [&] { return stopped && stopped(); };
    std::size_t begun = 0;
    return eachCopy(
        platform_, group, compared, [&](const OpenFile& kept, const OpenFile& file, Copy& copy) {
            if (isStopped()) return false;
            ++begun;
            const auto tell = [&](std::int64_t bytes) {
                if (progress) progress(begun, bytes);
                return !isStopped();
            };
            const OwnSpace before = spaceOf(*file.file);
            try {
                const auto end = shareOne(platform_, kept, file, copy.path, tell);
                // By its name: another file may stand there now.
                noteSpace(before, *platform_.sharing->open(*file.place.folder, file.place.name),
                          copy);
                if (end == BlockSharing::End::differs) copy.stays = Why::changed;
                if (end == BlockSharing::End::stopped) copy.stays = Why::stopped;
                return end != BlockSharing::End::stopped;
            } catch (const FileError&) {
                noteSpace(before, *file.file, copy);
                throw;
            }
        });
}

void SpaceSharing::settle() const {
    if (platform_.sharing->usesScratch()) SharingJournal(platform_).settle();
}

}  // namespace velto
