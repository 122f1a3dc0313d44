#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FolderChanges.h"
#include "support/FakeDirectoryReader.h"

namespace velto {

/// A home of random form in which random things happen, and what the system would tell of them.
class MadeHome {
public:
    MadeHome(FakeDirectoryReader& reader, std::string home, unsigned seed)
        : reader_(reader), home_(std::move(home)), random_(seed) {}

    void grow();

    /// One thing happens; the folders that it concerns are added to `told`.
    void change();

    /// What is told: each folder that a change concerns, and at random more than that.
    std::vector<FolderChange> takeTold();

    /// A folder that the walk may keep out.
    std::string anyFolder();

    unsigned upTo(unsigned bound) { return static_cast<unsigned>(random_() % bound); }
    double now = 0;            // of what changes
    double lastWalk = 0;       // when the last one was made
    bool tellsOfLinks = true;  // that a file has got another name, in the folder of the first one

private:
    using Node = FakeDirectoryReader::Node;

    std::vector<Node*> nodes(EntryKind kind, bool withHome = false);
    Node* any(EntryKind kind, bool withHome = false);
    std::string name(EntryKind kind);
    void addFile(Node& folder);
    void addLink(Node& file);
    void addFolder(Node& folder, int depth);
    void remove(Node& node);
    void move(Node& node);
    void tell(const Node& folder) { told_.insert(folder.path()); }
    /// Who is told of what a folder is by itself, the folder or the one above, is left open.
    void tellOfItself(const Node& folder);
    void write(Node& file);
    void setLinks(std::uint64_t inode);

    FakeDirectoryReader& reader_;
    const std::string home_;
    std::minstd_rand random_;
    std::map<std::uint64_t, std::vector<Node*>> linked_;  // by inode
    std::set<std::string> told_;
    std::set<std::string> toldWhole_;
    int count_ = 0;
};

}  // namespace velto
