#include "analysis/again/MadeHome.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::array<std::string_view, 12> topFolders{
    "Documents",    "Downloads",      "Pictures",
    "Movies",       "Music",          "Desktop",
    "Library",      "Library/Caches", "Library/Application Support",
    "Library/Logs", "Applications",   "Projects"};

constexpr std::array<std::string_view, 8> fileEndings{".txt", ".jpg", ".mp4", ".mp3",
                                                      ".zip", "",     ".dmg", ".pages"};
constexpr std::array<std::string_view, 6> folderEndings{"", "",     " MobileSync", ".photoslibrary",
                                                        "", "-Mail"};

}  // namespace

void MadeHome::grow() {
    for (const std::string_view top : topFolders) {
        Node& folder = reader_.folder(home_ + "/" + std::string(top));
        folder.allocatedSize = 4'096;
        folder.modified = now - upTo(1'000'000);
    }
    reader_.folder("/elsewhere");
    for (int index = 0; index < 25; ++index)
        addFolder(*any(EntryKind::folder, true), 2);
    for (int index = 0; index < 60; ++index)
        addFile(*any(EntryKind::folder, true));
    for (int index = 0; index < 5; ++index)
        addLink(*any(EntryKind::regular));
    told_.clear();
}

std::vector<MadeHome::Node*> MadeHome::nodes(EntryKind kind, bool withHome) {
    std::vector<Node*> found;
    std::vector<Node*> open{reader_.nodeAt(home_)};
    if (withHome && kind == EntryKind::folder) found.push_back(open.front());
    while (!open.empty()) {
        Node* folder = open.back();
        open.pop_back();
        for (const auto& [name, child] : folder->children) {
            if (child->kind == kind) found.push_back(child);
            if (child->kind == EntryKind::folder) open.push_back(child);
        }
    }
    return found;
}

MadeHome::Node* MadeHome::any(EntryKind kind, bool withHome) {
    const auto all = nodes(kind, withHome);
    return all.empty() ? nullptr : all[upTo(static_cast<unsigned>(all.size()))];
}

std::string MadeHome::anyFolder() { return any(EntryKind::folder)->path(); }

std::string MadeHome::name(EntryKind kind) {
    const std::array prefixes{"", "", "", ".", "ñ", "a "};
    const std::string front = prefixes.at(upTo(prefixes.size())) + std::to_string(++count_);
    return front + std::string(kind == EntryKind::folder
                                   ? folderEndings.at(upTo(folderEndings.size()))
                                   : fileEndings.at(upTo(fileEndings.size())));
}

void MadeHome::addFile(Node& folder) {
    constexpr std::array<std::int64_t, 6> sizes{0,         4'096,      900'000,
                                                1'500'000, 80'000'000, 310'000'000};
    Node& file = reader_.fileIn(folder, name(EntryKind::regular), sizes.at(upTo(sizes.size())));
    file.logicalSize = file.allocatedSize + upTo(1'000);
    file.modified = now - upTo(100'000);
    file.accessed = upTo(3) == 0 ? 0 : now - upTo(900'000);
    file.hiddenFlag = upTo(12) == 0;
    if (upTo(12) == 0) file.kind = EntryKind::symbolicLink;
    if (upTo(25) == 0) file.kind = EntryKind::unreadable;
    folder.modified = std::max(folder.modified, file.modified);
    tell(folder);
}

void MadeHome::addLink(Node& file) {
    const bool isOutside = upTo(4) == 0;
    Node& folder = isOutside ? *reader_.nodeAt("/elsewhere") : *any(EntryKind::folder, true);
    Node& other = reader_.fileIn(folder, name(EntryKind::regular), file.allocatedSize);
    other.logicalSize = file.logicalSize;
    other.modified = file.modified;
    other.accessed = file.accessed;
    other.inode = file.inode;
    auto& names = linked_[file.inode];
    if (names.empty()) names.push_back(&file);
    names.push_back(&other);
    setLinks(file.inode);
    folder.modified = now;
    if (tellsOfLinks) tell(*file.parent);
    tell(folder);
}

void MadeHome::setLinks(std::uint64_t inode) {
    auto& names = linked_[inode];
    for (Node* name : names)
        name->links = static_cast<std::uint32_t>(names.size());
    if (names.size() <= 1) linked_.erase(inode);
}

void MadeHome::addFolder(Node& folder, int depth) {
    Node& child = reader_.folderIn(folder, name(EntryKind::folder));
    child.allocatedSize = upTo(2) * 4'096;
    child.modified = now - upTo(100'000);
    child.hiddenFlag = upTo(15) == 0;
    for (unsigned files = upTo(4); files > 0; --files)
        addFile(child);
    if (depth > 0 && upTo(2) == 0) addFolder(child, depth - 1);
    tell(folder);
    if (upTo(2) == 0) tell(child);
}

/// By one of its names: nobody is told of the others.
void MadeHome::write(Node& file) {
    const auto allocated = static_cast<std::int64_t>(upTo(4)) * 1'000'000 + upTo(5'000);
    std::vector<Node*> names{&file};
    if (linked_.contains(file.inode)) names = linked_[file.inode];
    for (Node* name : names) {
        name->allocatedSize = allocated;
        name->logicalSize = allocated;
        name->modified = now;
    }
}

void MadeHome::remove(Node& node) {
    std::vector<Node*> below{&node};
    for (std::size_t index = 0; index < below.size(); ++index) {
        for (const auto& [name, child] : below[index]->children)
            below.push_back(child);
    }
    for (Node* gone : below) {
        if (gone->kind == EntryKind::folder && upTo(2) == 0) tell(*gone);
        if (!linked_.contains(gone->inode)) continue;
        std::erase(linked_[gone->inode], gone);
        setLinks(gone->inode);
    }
    tell(*node.parent);
    node.parent->modified = now;
    reader_.remove(node.path());
}

void MadeHome::move(Node& node) {
    Node* target = any(EntryKind::folder, true);
    for (const Node* above = target; above != nullptr; above = above->parent) {
        if (above == &node) return;  // into itself
    }
    tell(*node.parent);
    tell(*target);
    node.parent->modified = target->modified = now;
    // To a new name, or to one that another folder had.
    std::string newName = name(node.kind);
    if (node.kind == EntryKind::folder && upTo(3) == 0 && !target->children.empty()) {
        Node* taken = target->children.begin()->second;
        if (taken != &node && taken->kind == EntryKind::folder) {
            newName = taken->name;
            for (const Node* above = node.parent; above != nullptr; above = above->parent) {
                if (above == taken) return;  // it lies in what it would replace
            }
            remove(*taken);
        }
    }
    reader_.move(node.path(), target->path() + "/" + newName);
}

void MadeHome::tellOfItself(const Node& folder) {
    tell(upTo(2) == 0 || folder.path() == home_ ? folder : *folder.parent);
}

void MadeHome::change() {
    Node& folder = *any(EntryKind::folder);
    Node* const file = any(EntryKind::regular);
    switch (upTo(16)) {
        case 0:
        case 1:
            return addFile(*any(EntryKind::folder, true));
        case 2:
            return addFolder(folder, 2);
        case 3:
            if (file == nullptr) return;
            write(*file);
            return tell(*file->parent);
        case 4:
            if (file != nullptr) remove(*file);
            return;
        case 5:
            return upTo(3) == 0 ? remove(folder) : addFile(folder);
        case 6:
            if (file != nullptr) move(*file);
            return;
        case 7:
        case 8:
            return move(folder);
        case 9:
            if (file != nullptr) addLink(*file);
            return;
        case 10:  // when it was read is told to nobody
            if (file != nullptr && file->links == 1) file->accessed = now;
            return;
        case 11:  // nor what is written to a file that stays open
            if (file != nullptr && file->modified >= lastWalk - 1'000) write(*file);
            return;
        case 12:
            folder.hiddenFlag = !folder.hiddenFlag;
            return tellOfItself(folder);
        case 13:
            if (folder.openError == 0) tellOfItself(folder);
            folder.openError = folder.openError == 0 ? EACCES : 0;
            return;
        case 14:
            if (folder.listError == 0) tell(folder);
            folder.listError = folder.listError == 0 ? EIO : 0;
            return;
        default:  // another volume, mounted or gone again
            if (!folder.device) tell(*folder.parent);
            folder.device = folder.device ? std::nullopt : std::optional<std::uint64_t>(7);
    }
}

std::vector<FolderChange> MadeHome::takeTold() {
    // More than the truth, never less.
    if (upTo(3) == 0) told_.insert(anyFolder());
    std::vector<FolderChange> told;
    for (const std::string& path : told_) {
        FolderChange change{.path = path, .withAllBelow = upTo(12) == 0};
        if (upTo(20) == 0 && path != home_) change = {parentFolder(path), true};
        if (upTo(8) == 0) change.path = "/System/Volumes/Data" + change.path;
        told.push_back(change);
    }
    told_.clear();
    return told;
}

}  // namespace velto
