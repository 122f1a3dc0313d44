#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "analysis/folders/FolderTree.h"
#include "analysis/growth/GrowthSnapshot.h"
#include "platform/values/text.h"

namespace velto {

/// A home made of paths below "/home/ana" ("" is the home itself): `add("Movies/Boda", 300_MB)`
/// puts so much directly into the folder. Missing folders on the way are made. Each folder has an
/// inode of its own.
class MadeTree {
public:
    static constexpr const char* home = "/home/ana";

    MadeTree() { facts(""); }

    MadeTree& add(const std::string& path, std::int64_t bytes, std::uint64_t inode = 0) {
        facts(path).ownBytes += bytes;
        if (inode != 0) facts(path).inode = inode;
        return *this;
    }
    MadeTree& state(const std::string& path, FolderState state) {
        facts(path).state = state;
        return *this;
    }
    FolderFacts& facts(const std::string& path) {
        const auto found = folders_.find(path);
        if (found != folders_.end()) return found->second;
        if (!path.empty()) facts(above(path));
        FolderFacts made;
        made.inode = std::hash<std::string>()(path) | 1;
        return folders_.emplace(path, made).first->second;
    }
    const std::map<std::string, FolderFacts>& folders() const { return folders_; }

    FolderTree tree() const {
        std::map<std::string, std::uint32_t> numbers;
        for (const auto& [path, facts] : folders_)
            numbers.emplace(path, static_cast<std::uint32_t>(numbers.size()));
        std::vector<FolderTreeBuilder::Entry> entries;
        for (const auto& [path, facts] : folders_) {
            const bool isHome = path.empty();
            entries.push_back(
                {.number = numbers.at(path),
                 .parent = isHome ? FolderTreeBuilder::noParent : numbers.at(above(path)),
                 .name = isHome ? std::string_view(home) : lastPathComponent(path),
                 .facts = facts});
        }
        return FolderTreeBuilder::build(entries);
    }

    GrowthSnapshot snapshot(std::int64_t moment = 1'800'000'000,
                            std::vector<std::string> leftOut = {}) const {
        return GrowthSnapshot::of(
            tree(), {.moment = moment, .leftOut = std::move(leftOut), .volumes = {"disk"}});
    }

    static std::string above(const std::string& path) {
        const std::size_t slash = path.rfind('/');
        return slash == std::string::npos ? "" : path.substr(0, slash);
    }

private:
    std::map<std::string, FolderFacts> folders_;
};

}  // namespace velto
