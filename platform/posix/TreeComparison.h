#pragma once

#include <string>
#include <vector>

#include "platform/posix/Descent.h"
#include "platform/posix/PosixFolder.h"

namespace velto {

/// Whether one tree may go because another one holds all of it. "Alike" is what a move keeps: kind,
/// size and content, permissions, modification time (those of FAT volumes are even seconds) and the
/// user's extended attributes; of a link, where it leads. What has changed meanwhile, is gone or
/// may not be read is unlike. Works in a loop, so that no depth is too much. Throws FileError when
/// the file system gives no answer.
class TreeComparison {
public:
    explicit TreeComparison(FileCalls& calls);

    /// True when both trees hold the same names, all alike.
    bool areAlike(const Entry& left, const Entry& right);

    /// True when every entry of `rest` stands in `whole`, alike. Of `rest` some may be gone
    /// already: its folders may have been opened up for that, and their times are later.
    bool isHeldBy(const Entry& rest, const Entry& whole);

    /// True when `copy` was begun from `source` and holds nothing else: the same names or fewer, in
    /// each file the same bytes or none yet.
    bool isBegunCopyOf(const Entry& copy, const Entry& source);

private:
    enum class Likeness { same, emptied, begun };

    bool compare(const Entry& rest, const Entry& whole, Likeness likeness);
    bool compareTrees(const Entry& rest, const Entry& whole);
    bool compareEntry(Descent& rest, const std::string& name, Descent& whole,
                      const std::string& wholeName);
    bool compareFiles(const Descent& rest, const std::string& name, const struct stat& status,
                      const Descent& whole, const std::string& wholeName,
                      const struct stat& wholeStatus);
    bool enterFolders(Descent& rest, const std::string& name, const struct stat& status,
                      Descent& whole, const std::string& wholeName, const struct stat& wholeStatus);
    bool compareLinks(const Descent& rest, const std::string& name, const Descent& whole,
                      const std::string& wholeName);
    bool compareContent(int rest, int whole, off_t size, const std::string& path);
    bool areBytesAlike(std::size_t length) const;
    void readWhole(int file, std::vector<char>& buffer, std::size_t length, off_t offset,
                   const std::string& path);
    bool hasAttributesOf(int rest, int whole, const std::string& path);
    bool isKeptAlike(const struct stat& rest, const struct stat& whole) const;

    FileCalls& calls_;
    Likeness likeness_ = Likeness::same;
    std::vector<char> buffer_;
    std::vector<char> wholeBuffer_;
};

}  // namespace velto
