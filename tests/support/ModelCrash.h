#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/ModelDisk.h"

namespace velto {

/// What a file system promises of changes that were not synced.
enum class Durability {
    /// No more than POSIX says of fsync(2) and rename(2), and what every file system that can be
    /// relied on at all adds to it:
    /// - a changed name is on the disk once its folder was synced; until then each name keeps or
    ///   loses its changes by itself, in their order, whatever becomes of others;
    /// - a name is replaced in one step;
    /// - renaming writes the new name before the old one goes (the rule of soft updates, McKusick
    ///   and Ganger 1999); that of a folder is one step, as a folder has one name;
    /// - what a name stands for may be as it was made, changed in part, or of its new length with
    ///   zeros in it, until it is synced itself. That does not sync its name;
    /// - what is flushed as far as the drive (a Mac's plain fsync) counts from the next full sync
    /// of
    ///   that volume on.
    posix,
    /// ext4 with data=ordered and delayed allocation (the kernel's Documentation/filesystems/ext4):
    /// - names and attributes are changes in one journal for each volume, of which the disk holds a
    ///   beginning;
    /// - content is written when its blocks are allocated, after which its length is journaled: a
    ///   file whose name is on the disk may be empty or hold a beginning of its content;
    /// - syncing an inode writes its content and the journal up to the last change of that inode,
    ///   and with it all that came before: the name of a new file, a folder's entries.
    ext4Ordered,
};

/// Every state in which a loss of power may leave a disk: all legal ones when they are few, else a
/// sample. The changes are put in chains, of each of which a beginning survives; between chains
/// there are rules (this one only with that one).
class ModelCrash {
public:
    /// Right after the first `cut` entries of the disk's log. The disk outlives the object.
    ModelCrash(const ModelDisk& disk, std::size_t cut, Durability rules);

    /// How much of each chain there is.
    using State = std::vector<std::size_t>;

    /// Hands out states, each once. True when that was all of them; else there were `bound` of
    /// them: the extremes, each chain by itself, and others as `random` has it.
    bool run(std::size_t bound, std::mt19937_64& random,
             const std::function<void(const State& state)>& visit) const;

    ModelImage image(const State& state) const;

    /// For reports: what has not reached the disk.
    std::string missing(const State& state) const;

private:
    struct Link {
        std::size_t change;  // in the log
        std::size_t half;    // of a rename
    };
    struct Chain {
        std::vector<Link> links;
        std::size_t least = 0;     // what is durable
        std::size_t variants = 1;  // ways in which the next link may be there in part, and not
        std::size_t most() const { return links.size() * variants; }
    };
    /// When a chain has that many links, another has at least that many.
    struct Rule {
        std::size_t chain, links;
        std::size_t needed, neededLinks;
    };

    void chainsOfPosix();
    void chainsOfExt4();
    void durableByPosix();
    void durableByExt4();
    bool isSynced(std::size_t entry) const;
    Chain& chainOf(const std::string& key);
    std::size_t indexOf(const std::string& key) const { return keys_.at(key); }
    std::size_t add(const std::string& key, std::size_t change, std::size_t half);
    void raise(State& state) const;
    void lower(State& state) const;
    bool isLegal(const State& state) const;
    std::size_t needed(const Rule& rule) const;
    bool applies(const Rule& rule, const State& state) const;
    State least() const;
    State most() const;
    void applyContent(ModelImage& image, const ModelChange& change, std::size_t variant) const;

    const ModelDisk& disk_;
    std::size_t cut_;
    Durability durability_;
    std::vector<Chain> chains_;
    std::vector<Rule> rules_;
    std::map<std::string, std::size_t> keys_;
};

}  // namespace velto
