#include "analysis/folders/FolderTree.h"

#include <algorithm>

#include "platform/values/text.h"

namespace velto {
namespace {

bool leadsInto(std::string_view path, std::string_view root) {
    return root == "/" ? path.starts_with('/') : isAtOrBelow(path, root);
}

}  // namespace

FolderTree::Range FolderTree::children(Index index) const {
    const Index next = index + 1;
    const bool isLast = next == folders_.size();
    return {folders_[index].firstChild, isLast ? next : folders_[next].firstChild};
}

std::string_view FolderTree::name(Index index) const {
    const std::uint32_t start = index == 0 ? 0 : folders_[index - 1].nameEnd;
    return std::string_view(names_).substr(start, folders_[index].nameEnd - start);
}

std::string FolderTree::path(Index index) const {
    std::vector<std::string_view> names;
    for (Index folder = index; folder != none; folder = folders_[folder].parent)
        names.push_back(name(folder));
    std::string path(names.back());
    for (auto next = names.rbegin() + 1; next != names.rend(); ++next) {
        if (!path.ends_with('/')) path += '/';
        path += *next;
    }
    return path;
}

FolderTree::Index FolderTree::find(std::string_view path) const {
    // The home is the first and may hold the names of others, which know more of themselves.
    for (Index root = rootCount_; root-- > 0;) {
        if (!leadsInto(path, name(root))) continue;
        std::string_view rest = path.substr(name(root).size());
        Index folder = root;
        while (folder != none && !rest.empty()) {
            if (rest.front() == '/') rest.remove_prefix(1);
            const std::string_view next = rest.substr(0, rest.find('/'));
            rest.remove_prefix(next.size());
            if (!next.empty()) folder = childNamed(folder, next);
        }
        if (folder != none) return folder;
    }
    return none;
}

FolderTree::Index FolderTree::childNamed(Index folder, std::string_view wanted) const {
    auto [first, last] = children(folder);
    const Index end = last;
    while (first < last) {
        const Index middle = first + (last - first) / 2;
        if (name(middle) < wanted) {
            first = middle + 1;
        } else {
            last = middle;
        }
    }
    return first < end && name(first) == wanted ? first : none;
}

}  // namespace velto
