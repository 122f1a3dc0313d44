#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/ModelImage.h"

namespace velto {

/// One name of a folder that stands for something else from now on; 0 is nothing.
struct ModelEntryChange {
    ModelInode::Number folder = 0;
    std::string name;
    ModelInode::Number after = 0;
};

/// What one system call has done to the disk.
struct ModelChange {
    enum class Kind {
        entries,     // names: one, or both of a rename, the old one first
        attributes,  // permissions and times of an inode
        content,     // of a file
        sync,        // an inode is asked to reach the disk
        flush,       // the same as far as the drive's own cache
    };

    Kind kind = Kind::entries;
    int volume = 0;
    ModelInode::Number inode = 0;  // which it is about
    std::vector<ModelEntryChange> entries;
    ModelInode made;  // entries: as it was made, when this made it; attributes: what they are now
    std::shared_ptr<const std::string> content;
    ModelInode::Number replaced = 0;  // what the name stood for until now

    bool isRename() const { return entries.size() == 2; }
};

using ModelLog = std::vector<ModelChange>;

/// For reports: "rename Downloads/a -> it1-a".
std::string describe(const ModelChange& change);

}  // namespace velto
