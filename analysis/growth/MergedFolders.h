#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "analysis/growth/GrowthSnapshot.h"

namespace velto {

/// The folders of two snapshots, each with its counterpart. What is left out of either is in
/// neither, with all below it: what was not measured has neither grown nor shrunk.
class MergedFolders {
public:
    using Index = std::uint32_t;
    static constexpr Index none = UINT32_MAX;

    struct Folder {
        GrowthSnapshot::Index earlier = GrowthSnapshot::none;
        GrowthSnapshot::Index later = GrowthSnapshot::none;
        Index parent = none;   // always stands before; one that is dead by then stands for its own
        std::int64_t own = 0;  // by how much what lies in no folder below has changed
        bool isRenamed = false;
        bool isAlive =
            true;  // false: it belongs to a renamed folder, which has an entry of its own

        bool isInBoth() const {
            return earlier != GrowthSnapshot::none && later != GrowthSnapshot::none;
        }
    };

    /// Both snapshots outlive it. Folders are told apart by their paths alone.
    MergedFolders(const GrowthSnapshot& earlier, const GrowthSnapshot& later);

    /// Finds the folders that have another path now, by their inodes.
    void findRenames();

    const std::vector<Folder>& folders() const { return folders_; }

    /// As of the later snapshot where it has one.
    std::string path(const Folder& folder) const;

private:
    using Marks = std::unordered_set<GrowthSnapshot::Index>;

    /// What lists of things left out say of one snapshot besides the states of its folders.
    struct LeftOut {
        Marks folders;
        Marks holders;  // a file directly in it was left out
    };

    void pairRoots();
    void noteLeftOut(const std::string& path);
    void add(const Folder& folder);
    void addChildren();
    void addChildrenOf(Index index);
    bool isLeftOut(const Folder& folder) const;
    std::int64_t ownChange(const Folder& folder) const;
    bool canBeSame(const Folder& gone, const Folder& appeared) const;
    bool shareAFolder(GrowthSnapshot::Index earlier, GrowthSnapshot::Index later) const;
    bool isStillGone(Index index) const;
    bool renameOnce();

    const GrowthSnapshot& earlier_;
    const GrowthSnapshot& later_;
    LeftOut leftOutEarlier_;
    LeftOut leftOutLater_;
    Marks renamedEarlier_;
    Marks renamedLater_;
    std::vector<Folder> folders_;
    Index begun_ = 0;  // those before have their folders
};

}  // namespace velto
