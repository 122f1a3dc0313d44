#pragma once

#include <string>

#include "platform/posix/PosixBlockSharing.h"

namespace velto {

/// By a clone of the kept file that takes the copy's place: where the system cannot share ranges,
/// but clones whole files and exchanges two names in one step.
///
/// The clone is made beside the copy, gets all that the copy has besides its content, is compared
/// with it, and is exchanged with it; only then the copy's own blocks are given up. Wherever that
/// is cut off, the copy's name leads to a whole file, and what stands under the scratch name is
/// superfluous (see `settle`). A file that has further names, that is compressed or locked, or that
/// another process has open is left as it is: what that writes would go to the old file.
class CloneSharing final : public PosixBlockSharing {
public:
    using PosixBlockSharing::PosixBlockSharing;

    bool usesScratch() const override { return true; }
    void requireSharable(SharedFile& kept, SharedFile& copy) override;
    End share(SharedFile& kept, SharedFile& copy, const std::string& scratch,
              const Progress& progress) override;
    void settle(const FolderHandle& folder, const std::string& name,
                const std::string& scratch) override;

private:
    struct Clone;

    void make(const PosixSharedFile& kept, const Clone& clone);
    void dress(const PosixSharedFile& copy, Clone& clone);
    void takePlace(const PosixSharedFile& copy, const struct stat& before, const Clone& clone);
    void discard(const Clone& clone);
    bool isIdle(const PosixSharedFile& copy);
};

}  // namespace velto
