#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace velto {

/// A file, folder or link of the model.
struct ModelInode {
    using Number = std::size_t;  // where it stands in its image; 0 is no inode

    int volume = 0;
    mode_t mode = 0;
    std::int64_t accessed = 0;  // nanoseconds since 1970, as the next two
    std::int64_t modified = 0;
    std::int64_t changed = 0;
    std::shared_ptr<const std::string> content;  // of a file; where a link leads
    std::map<std::string, Number> entries;       // of a folder
    Number parent = 0;                           // of a folder
    int links = 0;

    bool isFolder() const { return S_ISDIR(mode); }
    bool isLink() const { return S_ISLNK(mode); }
};

/// All volumes of the model at one instant, as values: a copy is another disk.
struct ModelImage {
    using Number = ModelInode::Number;
    static constexpr Number root = 1;

    ModelImage();

    ModelInode& at(Number number) { return inodes[number]; }
    const ModelInode& at(Number number) const { return inodes[number]; }

    /// The root of a volume that is mounted over a folder; else the folder itself.
    Number mounted(Number folder) const;
    /// What a name of a folder stands for, 0 when nothing is there; no permission is asked.
    Number child(Number folder, const std::string& name) const;
    /// The same for an absolute path; links on the way are not followed.
    Number find(const std::string& path) const;

    /// All of what stands at a path as one text, like `treeText`; empty when nothing is there.
    std::string text(const std::string& path) const;
    /// The names directly in a folder.
    std::vector<std::string> names(const std::string& path) const;
    /// Equal for two disks on which a process finds the same.
    std::string fingerprint() const;

    /// Makes parents and numbers of links agree with the entries, as a check of the disk does.
    void repair();

    std::vector<ModelInode> inodes;
    std::map<Number, Number> mounts;  // folder to the root of what is mounted there
};

}  // namespace velto
