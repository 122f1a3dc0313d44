#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cleaning/TrashRecords.h"
#include "platform/FileManager.h"
#include "platform/FileMover.h"
#include "platform/HomeLayout.h"

namespace velto {

/// Something that stands outside the trash: its folder, held open, and its name there.
struct HeldPlace {
    std::unique_ptr<FolderHandle> folder;
    std::string name;
};

/// Splits an absolute standardised path and opens the folder above. Throws FileError.
HeldPlace openPlace(FileMover& mover, const std::string& path, FolderPath how);

/// Decides what may enter the trash.
class TrashGuard {
public:
    struct Admitted {
        HeldPlace place;
        FileAttributes attributes;
    };

    /// Both outlive the guard.
    TrashGuard(FileManager& files, FileMover& mover, const HomeLayout& layout)
        : files_(files), mover_(mover), layout_(layout) {}

    /// Passes a path by the tests below, the first failing one deciding the TrashError, and returns
    /// the folder in which they were made: whoever acts through it acts on what was tested,
    /// whatever the path leads to by then. `extraRoots` are further allowed prefixes besides the
    /// home, compared as plain text. FileError when the system has no answer.
    Admitted admit(const std::string& path, const std::vector<std::string>& extraRoots) const;

private:
    bool isAllowedRoot(const std::string& path, const std::vector<std::string>& extraRoots) const;
    void refuseTrash(const std::string& path, const std::string& standardized,
                     const Admitted& admitted) const;

    FileManager& files_;
    FileMover& mover_;
    const HomeLayout& layout_;
};

}  // namespace velto
