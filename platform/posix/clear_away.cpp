#include "platform/posix/clear_away.h"

#include <random>
#include <string>

#include <fmt/format.h>

#include "platform/posix/TreeComparison.h"
#include "platform/posix/volume_move.h"

namespace velto {

void clearAway(PosixFileManager& files, FileCalls& calls, const Entry& rest) {
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            files.removeAll(rest.parent, rest.name);
            files.sync(rest.parent);
            return;
        } catch (const FileError&) {
            // See the declaration.
        }
    }
    leaveBehind(calls, rest);
}

void clearCopy(PosixFileManager& files, FileCalls& calls, const Entry& copy, const Entry& source) {
    if (TreeComparison(calls).isBegunCopyOf(copy, source)) {
        clearAway(files, calls, copy);
    } else {
        leaveBehind(calls, copy);
    }
}

void leaveBehind(FileCalls& calls, const Entry& rest) {
    std::random_device source;
    const std::string name = fmt::format("{}-{:08x}", rest.name, source());
    try {
        moveAside(calls, rest, Entry(rest.parent, name));
    } catch (const FileError&) {
        // It is gone but for the syncing, or it keeps its name too.
    }
}

}  // namespace velto
