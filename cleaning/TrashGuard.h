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

/// Decides what may enter the trash, and where it may go when it comes out.
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

    // The way out. The manifest is a file that somebody may have tampered with: what it says of a
    // place is judged anew. Inside the home and outside the program's own data any place will do,
    // also one whose files are started by themselves (autostart, agents): the user may have trashed
    // such a file, the page shows the whole path, and nothing is put back unasked.

    /// The standardised path that an item goes back to. Throws TrashError: `notFound` when the
    /// entry is not consistent in itself, else what is wrong with the place.
    std::string formerPath(const TrashItem& item,
                           const std::vector<std::string>& extraRoots = {}) const;

    /// The same judgement of any standardised path, by its text alone.
    void judgeReturn(const std::string& path,
                     const std::vector<std::string>& extraRoots = {}) const;

    /// The same of a folder, by identity: a path may reach the program's data in other letters.
    void refuseOwnData(const FolderHandle& folder) const;

private:
    bool isAllowedRoot(const std::string& path, const std::vector<std::string>& extraRoots) const;
    void refuseTrash(const std::string& path, const std::string& standardized,
                     const Admitted& admitted) const;

    FileManager& files_;
    FileMover& mover_;
    const HomeLayout& layout_;
};

}  // namespace velto
