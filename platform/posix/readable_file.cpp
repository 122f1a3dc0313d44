#include "platform/posix/readable_file.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

#include "platform/posix/ownership.h"

namespace velto {
namespace {

constexpr const char* attempt = "read";
constexpr std::size_t pieceSize = 256 * 1024;

bool isOwnOnly(const ReadLimit& limit) { return limit.from != ReadFrom::anyFile; }

/// Why what stands there is not to be read, as an error number; nothing when it may be.
std::optional<int> refusal(FileCalls& calls, const struct stat& status, const std::string& path,
                           const ReadLimit& limit) {
    if (S_ISDIR(status.st_mode)) return EISDIR;
    if (S_ISLNK(status.st_mode)) return ELOOP;
    if (!S_ISREG(status.st_mode)) return EINVAL;
    if (isOwnOnly(limit) && !isOwn(calls, status, path)) return EPERM;
    if (status.st_size > limit.bytes) return EFBIG;
    return std::nullopt;
}

/// What cannot be opened: a link or a socket in the place of an own file, and a file of another
/// user, will never be readable; all else may be the next time.
[[noreturn]] void failToOpen(FileCalls& calls, const std::string& path, const ReadLimit& limit,
                             int reason) {
    struct stat status;
    if (reason != ENOENT && calls.stat(AT_FDCWD, path.c_str(), status) == 0) {
        const auto refused = refusal(calls, status, path, limit);
        const bool mayLead = S_ISLNK(status.st_mode) && limit.from != ReadFrom::ownFile;
        if (refused && !mayLead) throw RefusedFile(attempt, path, *refused);
    }
    throw FileError(attempt, path, reason);
}

}  // namespace

ReadableFile openReadable(FileCalls& calls, const std::string& path, const ReadLimit& limit) {
    // Opening neither waits for the other end of a pipe nor takes a terminal over.
    const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC |
                      (limit.from == ReadFrom::ownFile ? O_NOFOLLOW : 0);
    ReadableFile file{.descriptor = Descriptor(calls.open(AT_FDCWD, path.c_str(), flags, 0)),
                      .status = {}};
    if (!file.descriptor.isOpen()) failToOpen(calls, path, limit, errno);
    if (calls.status(file.descriptor.number(), file.status) != 0) {
        throw FileError(attempt, path, errno);
    }
    const auto reason = refusal(calls, file.status, path, limit);
    if (reason) throw RefusedFile(attempt, path, *reason);
    return file;
}

std::string readWhole(FileCalls& calls, const ReadableFile& file, const std::string& path,
                      const ReadLimit& limit) {
    const auto most = static_cast<std::size_t>(limit.bytes);
    const auto expected = std::min(static_cast<std::size_t>(file.status.st_size), most);
    std::string content;
    std::size_t filled = 0;
    while (true) {
        // At the expected end one byte more tells whether the file has grown.
        const std::size_t ahead = filled < expected    ? expected - filled
                                  : filled == expected ? 1
                                                       : most - filled + 1;
        const std::size_t wanted = std::min(pieceSize, ahead);
        // The first piece decides before memory is taken for all: a file that is all hole ends
        // there.
        if (filled == pieceSize) content.reserve(expected);
        content.resize(filled + wanted);
        const ssize_t length = calls.readAt(file.descriptor.number(), content.data() + filled,
                                            wanted, static_cast<off_t>(filled));
        if (length < 0) throw FileError(attempt, path, errno);
        const auto count = static_cast<std::size_t>(length);
        // The program's own files are texts; holes and lost blocks read as NUL bytes.
        if (isOwnOnly(limit) && std::memchr(content.data() + filled, '\0', count) != nullptr) {
            throw RefusedFile(attempt, path, EILSEQ);
        }
        filled += count;
        if (filled > most) throw RefusedFile(attempt, path, EFBIG);
        if (length == 0) break;
    }
    content.resize(filled);
    return content;
}

}  // namespace velto
