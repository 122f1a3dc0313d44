#pragma once

#include <sys/stat.h>

#include <map>
#include <string>
#include <vector>

#include "platform/posix/PosixFolder.h"

namespace velto {

/// The copy of one file, link or folder onto another volume, and the proof that its source has not
/// changed since. What it throws is FileError.
class TreeCopy {
public:
    explicit TreeCopy(FileCalls& calls);

    /// Copies the source to a name that must be free, and syncs it whole. On failure what was made
    /// so far stays at the target.
    void copy(const Entry& source, const Entry& target);

    /// Throws EBUSY unless the tree at `source` is what was copied, entry by entry. After the tree
    /// was renamed as a whole, its own change time is not compared.
    void requireUnchanged(const Entry& source, bool renamed);

    /// True when two trees hold the same names with the same kinds, sizes and modification times
    /// (to the second, which every volume keeps).
    bool areAlike(const Entry& left, const Entry& right);

private:
    struct Place {
        int folder;
        std::string name;
        std::string path;  // for messages alone
    };
    /// What was met, by its path below the source.
    using Seen = std::map<std::string, struct stat>;

    void copyEntry(const Place& source, const Place& target, const std::string& below);
    void copyFile(const Place& source, const Place& target, const struct stat& status);
    void copyFolder(const Place& source, const Place& target, const struct stat& status,
                    const std::string& below);
    void copyLink(const Place& source, const Place& target, const struct stat& status);
    void copyContent(int from, int to, const Place& source, off_t size);
    void copyPiece(int from, int to, const Place& source, off_t start, off_t end);
    void finish(int from, int to, const Place& target, const struct stat& status);
    void look(const Place& place, const std::string& below, Seen& seen);
    struct stat examine(const Place& place);
    void requireRemovable(const Place& place, const struct stat& status) const;

    FileCalls& calls_;
    Seen copied_;
    std::vector<char> buffer_;
};

}  // namespace velto
