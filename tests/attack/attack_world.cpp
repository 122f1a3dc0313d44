#include "attack/attack_world.h"

#include <algorithm>

namespace velto {

std::vector<std::string> AttackWorld::found() const {
    namespace fs = std::filesystem;
    std::vector<std::string> all;
    const PosixFileManager disk;
    for (const auto& entry : fs::recursive_directory_iterator(root.path("home"))) {
        if (!entry.is_regular_file() || entry.is_symlink()) continue;
        std::string content = disk.read(entry.path(), anyFile(1 << 20));
        if (content.starts_with("content of ")) all.push_back(std::move(content));
    }
    std::ranges::sort(all);
    return all;
}

}  // namespace velto
