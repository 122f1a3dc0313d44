#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/BlockSharing.h"
#include "platform/Platform.h"

namespace velto {

/// Lets identical files lie in the same blocks of the disk: the space of the copies comes back and
/// every file stays. Stateless; blocking; safe from every thread.
class SpaceSharing {
public:
    /// Why a copy stays as it is.
    enum class Reason {
        one,        // shares its space with the kept file already
        linked,     // is a name of a file that is in the group by another one
        changed,    // since the files were compared, or while that was done again
        gone,       // nothing stands there, or no file
        refused,    // a link on its way, outside of the home, or protected by the rules
        otherDisk,  // than the kept file's
        cannot,     // the disk cannot share blocks, or not of these files
        closed,     // the file may not be changed
        inUse,      // in a way that forbids it
        keptFile,   // the kept file itself cannot be used: changed, gone, refused
        stopped,    // by the user, in the middle: a part of it shares its space
        other,      // the system says no in another way
    };

    /// Copies that are to share the space of one of them.
    struct Group {
        std::string kept;                 // absolute path; not touched
        std::vector<std::string> copies;  // absolute paths
    };

    struct Copy {
        std::string path;
        /// What comes back, or has come back; 0 where nothing does.
        OwnSpace space{};
        std::optional<Reason> stays;  // nothing: it can share, or does now
        std::string detail;           // what the system says, in its own words; may be empty
    };

    /// `copies` so far, of which the last is under way, and the bytes compared of that one.
    using Progress = std::function<void(std::size_t copies, std::int64_t bytes)>;

    /// The platform outlives the object.
    explicit SpaceSharing(const Platform& platform) : platform_(platform) {}

    /// What sharing would bring, copy by copy in their order. `compared` is when the files were
    /// found to be alike (seconds since 1970). Changes nothing. Space that copies have in common
    /// with each other, or with a snapshot, counts 0: nobody says whether anyone else holds it.
    std::vector<Copy> foretell(const Group& group, double compared) const;

    /// Shares, copy by copy; `stopped` is asked between pieces of 16 MiB at most. What comes back
    /// as bytes is what each copy held alone just before, less what it holds alone afterwards. A
    /// copy that fails does not stop the others; those that are not come to are left out.
    std::vector<Copy> share(const Group& group, double compared,
                            const std::function<bool()>& stopped,
                            const Progress& progress = {}) const;

    /// Restores order after a `share` that a dying process has cut off. Never throws.
    void settle() const;

private:
    const Platform& platform_;
};

}  // namespace velto
