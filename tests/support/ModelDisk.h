#pragma once

#include <string>
#include <vector>

#include "support/ModelImage.h"
#include "support/ModelLog.h"

namespace velto {

/// File systems in memory, seen by one user who is no administrator: hard links, links, permissions
/// of the owner, any number of volumes. Its functions do what the system calls do: -1 and `errno`
/// when they fail. Everything that changes something is also written into a log, from which
/// `ModelCrash` tells what a loss of power may leave. One thread at a time.
class ModelDisk {
public:
    using Number = ModelInode::Number;

    ModelDisk() = default;
    /// The disk that a loss of power has left: all that it holds is durable.
    explicit ModelDisk(const ModelImage& image);

    /// What a path stands for: its folder, its last name there and, unless 0, what is there.
    struct Place {
        Number folder = 0;
        std::string name;
        Number inode = 0;
    };

    /// Goes down a path. False with `errno` when that is not possible; nothing being there under
    /// the last name is none of the reasons.
    bool reach(Number start, const std::string& path, bool followsLast, Place& place) const;

    /// True when the owner's permissions allow it; else false with EACCES.
    bool allows(Number number, mode_t rights) const;

    int make(const Place& place, mode_t mode, std::string content, Number& made);
    int addName(const Place& from, const Place& to);
    int remove(const Place& place, bool isFolder);
    int rename(const Place& from, const Place& to);
    void setContent(Number file, std::string content);
    void setAttributes(Number number, mode_t mode, std::int64_t accessed, std::int64_t modified);
    void sync(Number number, ModelChange::Kind kind);

    const ModelImage& live() const { return live_; }
    /// The disk as it was when the log began.
    const ModelImage& durable() const { return durable_; }
    const ModelLog& log() const { return log_; }

    /// Makes an empty volume and mounts it over a folder.
    void mount(const std::string& folder);
    /// Everything reaches the disk; the log begins anew.
    void settle();

    bool knowsExclusiveRename = true;

private:
    bool mayChange(const Place& place) const;
    bool wouldEnclose(Number folder, Number inner) const;
    void apply(ModelChange change);
    std::int64_t tick() { return ++time_; }

    ModelImage durable_;
    ModelImage live_;
    ModelLog log_;
    std::int64_t time_ = 1'700'000'000'000'000'000;
    int volumes_ = 1;
};

/// Puts the names of a change into an image, without a look at anything else.
void applyEntry(ModelImage& image, const ModelEntryChange& entry);

}  // namespace velto
