#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

class FileCalls;
FileCalls& systemFileCalls();

/// A folder in which another user may have put what the program would believe, or in whose place
/// there is a link.
class UnsafeFolder : public std::runtime_error {
public:
    enum class Reason { link, otherOwner, openToOthers };

    UnsafeFolder(Reason reason, std::string path);

    Reason reason() const { return reason_; }
    const std::string& path() const { return path_; }

private:
    Reason reason_;
    std::string path_;
};

/// Makes a folder of the program's own and its missing parents, for the user alone (0700) whatever
/// the umask. One that is there already must be a real folder of the user's, or of the owner of the
/// folder above it; whatever other users may do in it is taken from them. Links further up in the
/// path are followed.
///
/// True when other users had a way into it. Throws UnsafeFolder when it cannot be trusted, and
/// FileError when it cannot be made or looked at. Like all here: blocking, and safe from every
/// thread.
bool makeOwnFolder(const std::string& path, FileCalls& calls = systemFileCalls());

/// Takes from other users what they may do with the files and folders of the user's own that lie
/// directly in a folder, where they may write them. Returns their paths; what cannot be changed
/// stays as it is. A folder that is not there, or a link in its place, has none.
std::vector<std::string> closeToOthers(const std::string& folder,
                                       FileCalls& calls = systemFileCalls());

/// Lets a file be opened or made at a path in a folder of the user's own: a folder, a link, a pipe
/// or another user's file in its place is put aside, under a name that begins with its own. True
/// when something was in the way. Throws FileError.
bool makeWay(const std::string& path, FileCalls& calls = systemFileCalls());

/// Whether it is the name of a temporary file of `FileManager::writeAtomically`.
bool isNameOfTemporary(std::string_view name);

/// Removes the temporary files that saves have left in a folder when their process was killed.
/// Never one that a save is using, in this process or another. Returns how many; what cannot be
/// removed, or told to be unused, stays.
int removeStaleTemporaries(const std::string& folder, FileCalls& calls = systemFileCalls());

}  // namespace velto
