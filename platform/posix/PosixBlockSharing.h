#pragma once

#include <sys/stat.h>

#include <string>

#include "platform/BlockSharing.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/FileCalls.h"
#include "platform/posix/PosixFolder.h"

namespace velto {

FileStamp stampFrom(const struct stat& status);

/// An open file with what a way of sharing needs of it.
class PosixSharedFile final : public SharedFile {
public:
    /// Opens it; `folder` outlives the object.
    PosixSharedFile(FileCalls& calls, const FolderHandle& folder, const std::string& name);

    FileStamp stamp() override { return stampFrom(status()); }
    OwnSpace ownSpace() override;

    struct stat status() const;
    int number() const { return descriptor_.number(); }
    const FolderHandle& folder() const { return folder_; }
    const std::string& name() const { return name_; }
    std::string path() const { return posix(folder_).path + "/" + name_; }

private:
    FileCalls& calls_;
    const FolderHandle& folder_;
    std::string name_;
    Descriptor descriptor_;
};

/// What all ways of sharing have in common.
class PosixBlockSharing : public BlockSharing {
public:
    /// `calls` outlives the object.
    explicit PosixBlockSharing(FileCalls& calls = systemFileCalls()) : calls_(calls) {}

    std::unique_ptr<SharedFile> open(const FolderHandle& folder, const std::string& name) override;
    void requireSharable(SharedFile& kept, SharedFile& copy) override;
    bool isOneWith(SharedFile& kept, SharedFile& copy) override;

protected:
    /// This class hands out no other kind.
    static PosixSharedFile& own(SharedFile& file) { return static_cast<PosixSharedFile&>(file); }

    FileCalls& calls_;
};

/// By the system's own call that compares and shares a range in one step, while it keeps both files
/// from being changed.
class RangeSharing final : public PosixBlockSharing {
public:
    using PosixBlockSharing::PosixBlockSharing;

    /// Of one step: so much the user waits for when the work is to end.
    static constexpr std::int64_t stepLength = 16 * 1024 * 1024;

    End share(SharedFile& kept, SharedFile& copy, const std::string& scratch,
              const Progress& progress) override;
};

}  // namespace velto
