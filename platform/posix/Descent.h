#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/posix/PosixFolder.h"

namespace velto {

/// A way down one tree by open folders, with few descriptors however deep it goes: of a long way
/// only the lowest folders stay open. A closed one is opened again through "..", and used only if
/// it is the same one. What it throws is FileError.
class Descent {
public:
    struct Level {
        std::string name;
        Descriptor folder;
        struct stat status;
        std::vector<std::string> names;  // still to be visited, the next one last
    };

    /// Starts in the folder that holds `root`, which outlives it.
    Descent(FileCalls& calls, const Entry& root, const char* attempt);

    /// How many folders it has entered and not left.
    std::size_t depth() const { return levels_.size(); }

    /// The current folder.
    int folder() const;

    struct stat examine(const std::string& name) const;

    /// The mount on which a name of the current folder lies; with an empty name that of the folder.
    std::uint64_t mount(const std::string& name) const;

    /// Enters a folder of the current one. Throws EBUSY when it is not the one that was examined.
    void enter(const std::string& name, const struct stat& examined);

    /// Lists the current folder, for `next`.
    void list();

    /// The next name of the current folder in byte order; nothing when all were visited.
    std::optional<std::string> next();

    /// Goes back to the folder above and hands out the one that was left.
    Level leave();

    /// Of a name in the current folder; for messages alone.
    std::string path(const std::string& name) const;

private:
    [[noreturn]] void fail(const std::string& name, int reason) const;

    FileCalls& calls_;
    const Entry& root_;
    const char* attempt_;
    std::vector<Level> levels_;
};

}  // namespace velto
