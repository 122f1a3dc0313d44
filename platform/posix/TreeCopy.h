#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/Descent.h"
#include "platform/posix/PosixFolder.h"

namespace velto {

/// The copy of one file, link or folder onto another volume, and the proof that it holds the same
/// and that its source has not changed since. Works in a loop, so that no depth is too much. What
/// it throws is FileError.
class TreeCopy {
public:
    explicit TreeCopy(FileCalls& calls);

    /// Copies the source to a name that must be free, and syncs it whole. Every file of the copy is
    /// then read again from the disk, as far as the system lets it, and compared; throws EIO when
    /// it differs. On failure what was made so far stays at the target.
    void copy(const Entry& source, const Entry& target);

    /// Throws EBUSY unless the tree at `source` is what was copied, entry by entry. After the tree
    /// was renamed as a whole, its own change time is not compared.
    void requireUnchanged(const Entry& source, bool renamed);

private:
    /// What was met on the way through a tree, folder by folder in the order of names; with the
    /// depths it tells the whole tree. The root has no name, as it may have another one by now.
    struct Met {
        std::size_t depth;
        std::string name;
        struct stat status;
    };
    using Tree = std::vector<Met>;

    void copyEntry(Descent& from, const std::string& name, Descent& to, const std::string& newName);
    void copyFile(const Descent& from, const std::string& name, const Descent& to,
                  const std::string& newName, const struct stat& status);
    void enterFolder(Descent& from, const std::string& name, Descent& to,
                     const std::string& newName, const struct stat& status);
    void leaveFolder(Descent& from, Descent& to);
    void copyLink(const Descent& from, const std::string& name, const Descent& to,
                  const std::string& newName, const struct stat& status);
    void copyContent(int from, int to, const std::string& path, off_t size);
    void copyPiece(int from, int to, const std::string& path, off_t start, off_t end);
    void copyWithoutHoles(int from, int to, const std::string& path, off_t size);
    void writeWhole(int to, const std::string& path, std::string_view content, off_t start);
    void requireSameContent(int from, int to, const std::string& path, const struct stat& status);
    std::size_t fill(std::vector<char>& buffer, int file, const std::string& path, off_t start,
                     off_t end);
    void finish(int from, int to, const std::string& path, const struct stat& status, bool isLast);
    Tree look(const Entry& root);
    void requireRemovable(const Descent& from, const std::string& name,
                          const struct stat& status) const;

    FileCalls& calls_;
    Tree copied_;
    std::uint64_t mount_ = 0;  // of the folder that holds the source, and of all that is copied
    std::vector<char> buffer_;
    std::vector<char> copyBuffer_;
};

}  // namespace velto
