#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/WalkTotals.h"
#include "analysis/categories.h"
#include "analysis/folders/FolderTree.h"

namespace velto {

/// What the files directly in one folder add to a category.
struct KeptCount {
    Category category = Category::documents;
    std::int64_t bytes = 0;
    std::int64_t files = 0;

    bool operator==(const KeptCount&) const = default;
};

/// A file directly in a folder that is large enough to be compared with others.
struct KeptCandidate {
    std::string_view name;
    std::int64_t bytes = 0;   // allocated
    std::int64_t length = 0;  // bytes

    bool operator==(const KeptCandidate&) const = default;
};

/// One folder of a walk with all that the walk has made of it, folders in it apart.
struct KeptFolder {
    static constexpr std::uint32_t none = UINT32_MAX;

    std::string_view name;   // the home's is its path
    FolderFacts facts;       // files with several names are not in them
    std::uint32_t mark = 0;  // as the classifier has set it
    bool isHidden = false;
    bool isReadAgain = false;      // what it says may become untrue without a word of the system's
    std::int64_t hiddenBytes = 0;  // of files that are in no category
    std::int64_t unreadable = 0;   // entries of categories that could not be read, itself too
    std::uint32_t parent = none;
    std::uint32_t firstChild = 0;
    std::uint32_t children = 0;
    std::uint32_t firstCount = 0;
    std::uint32_t counts = 0;
    std::uint32_t firstCandidate = 0;
    std::uint32_t candidates = 0;

    /// False for what was named and not entered.
    bool wasEntered() const {
        return facts.state == FolderState::measured || facts.state == FolderState::unreadable;
    }
};

/// A walk of the home folder by folder, so that a later one need not read those that are unchanged.
/// The home comes first, and the folders of each stand side by side in the byte order of their
/// names, after it.
struct KeptWalk {
    std::vector<KeptFolder> folders;
    std::vector<KeptCount> counts;
    std::vector<KeptCandidate> candidates;
    std::vector<std::uint64_t> linked;  // inodes of files with several names; in order
    std::deque<std::string> names;      // those that nobody else holds

    std::string path(std::uint32_t folder) const;

    /// The folder of that name directly inside one, `KeptFolder::none` when there is none.
    std::uint32_t child(std::uint32_t folder, std::string_view name) const;

    /// Adds what the walk has counted; candidates in no order.
    void addTo(WalkTotals& totals) const;
    /// The same of what could not be read.
    std::int64_t unreadable() const;
};

}  // namespace velto
