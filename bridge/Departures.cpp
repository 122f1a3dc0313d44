#include "bridge/Departures.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "platform/values/text.h"
#include "platform/values/units.h"

namespace velto {
namespace {

/// As the analysis has counted it: a folder as it stood in the tree, a file by what the trash knows
/// of it, never more than the files of its folder were.
Departures::Missing missing(const FolderTree& tree, const std::string& path, std::int64_t bytes) {
    const FolderTree::Index itself = tree.find(path);
    if (itself != FolderTree::none) return {tree[itself].bytes, tree[itself].files};
    const FolderTree::Index above = tree.find(parentFolder(path));
    // A folder that the analysis has not met holds nothing that it has counted.
    if (above == FolderTree::none) return {};
    const bool hasFiles = tree[above].own.ownFiles > 0;
    return {std::min(bytes, tree[above].own.ownBytes), hasFiles ? 1 : 0};
}

void add(Departures::Missing& sum, const Departures::Missing& more) {
    sum.bytes += more.bytes;
    sum.files += more.files;
}

}  // namespace

void Departures::take(const std::vector<TrashItem>& trash, const Bytes& bytes,
                      const std::vector<VeltoTrashService::Returned>& returned, double measured) {
    std::unordered_set<std::string> back;
    for (const auto& [item, path] : returned) {
        // Beside its place is in the same folder again; elsewhere it is still missing here.
        if (parentFolder(path) == parentFolder(standardizedPath(item.originalPath))) {
            back.insert(item.id);
        }
    }
    std::erase_if(byPath_, [&](const auto& entry) { return back.contains(entry.second.id); });
    for (const TrashItem& item : trash) {
        if (item.taken <= measured) continue;
        const auto known = bytes.find(item.id);
        byPath_[standardizedPath(item.originalPath)] = {
            .id = item.id,
            .bytes =
                known != bytes.end() ? known->second : std::llround(item.gb * bytesPerGigabyte)};
    }
}

void Departures::noteBack(const std::vector<std::string>& paths) {
    for (const std::string& path : paths)
        byPath_.erase(standardizedPath(path));
}

Departures::Below Departures::below(const FolderTree& tree, const std::string& folder) const {
    Below result;
    const std::string begin = folder == "/" ? folder : folder + "/";
    std::string_view counted;  // a folder of the tree that has left with all that it held
    for (auto entry = byPath_.lower_bound(begin);
         entry != byPath_.end() && entry->first.starts_with(begin); ++entry) {
        const std::string& path = entry->first;
        const bool isInside = !counted.empty() && isAtOrBelow(path, std::string(counted));
        if (isInside) continue;
        if (tree.find(path) != FolderTree::none) counted = path;
        const Missing gone = missing(tree, path, entry->second.bytes);
        add(result.all, gone);
        const std::string_view rest = std::string_view(path).substr(begin.size());
        const std::size_t slash = rest.find('/');
        if (slash != std::string_view::npos) {
            add(result.folders[std::string(rest.substr(0, slash))], gone);
        }
    }
    return result;
}

}  // namespace velto
