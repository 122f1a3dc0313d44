#pragma once

#include <string>
#include <vector>

#include "cleaning/SpaceSharing.h"
#include "filesystems/linux/volumes_of_every_kind.h"
#include "platform/Platform.h"
#include "platform/posix/PosixBlockSharing.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/WatchedFileCalls.h"
#include "support/fakes.h"

namespace velto {

/// A home on a volume of its own, with files that are alike. To be used in a process with mounts of
/// its own.
class SharingWorld {
public:
    /// An odd length: the last block is not full.
    static constexpr std::int64_t length = 3 * 1024 * 1024 + 4321;
    /// When the files were found to be alike: after all that they are dated.
    static constexpr double compared = 1'700'000'000;

    /// How blocks are shared: as Linux does it, or as a Mac does it with the same calls.
    enum class Way { byRange, byClone };

    /// `problem()` says why there is none.
    SharingWorld(const VolumeKind& kind, Way way);

    const std::string& problem() const { return problem_; }

    /// A file with an owner, times, access and an attribute of its own. The content differs from
    /// seed to seed and does not compress.
    std::string file(const std::string& name, unsigned seed, std::int64_t bytes = length) const;
    std::string path(const std::string& name) const { return home + "/" + name; }

    SpaceSharing::Group group() const;  // of "kept" and "one", "two", in a folder each

    /// Content, owner, times, access and attributes of every file below the home, by its name.
    std::string everything() const;

    /// All of a file, with what tells its owner, times, access and attributes.
    static std::string contentAt(const std::string& path);

    /// Bytes that the volume has left once all is written out.
    std::int64_t freeBytes() const;
    std::int64_t block() const;

    /// Bytes of a file in blocks that others have part of, as the system tells.
    static std::int64_t sharedBytes(const std::string& path);

    WatchedFileCalls calls;
    Platform platform;
    SpaceSharing sharing{platform};
    std::string home;

private:
    TempHome base_;
    std::string volume_;
    std::string problem_;
};

}  // namespace velto
