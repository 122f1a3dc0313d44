#include "maintenance/duplicate_copies.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <unordered_set>

#include "cleaning/DupFinder.h"
#include "platform/parallel.h"
#include "platform/values/text.h"
#include "platform/walk/TreeWalk.h"

namespace velto {
namespace {

/// Collects what one worker meets, by the root below which it lies.
class CopyVisitor final : public TreeVisitor {
public:
    explicit CopyVisitor(std::size_t roots) : found_(roots) {}

    void file(const WalkedFolder& folder, const DirectoryEntry& entry, const Place*) override {
        const std::int64_t size =
            entry.allocatedSize >= 0 ? entry.allocatedSize : entry.logicalSize;
        if (size < DupFinder::smallestSize) return;
        std::string path = folder.pathOf(entry.name);
        if (isProtectedPath(path)) return;
        found_[folder.root()].push_back({std::move(path), size, entry.logicalSize});
    }

    const std::vector<FileRecord>& found(std::size_t root) const { return found_[root]; }

private:
    std::vector<std::vector<FileRecord>> found_;
};

/// The folders, each once. A role that this home lacks is empty.
std::vector<WalkRoot> rootsOf(const HomeLayout& layout) {
    std::vector<WalkRoot> roots;
    for (const std::string& path : {layout.downloads, layout.desktop, layout.documents}) {
        const bool isKnown =
            std::ranges::any_of(roots, [&](const WalkRoot& root) { return root.path == path; });
        if (!path.empty() && !isKnown) roots.push_back({.path = path, .resolved = layout.home});
    }
    return roots;
}

/// In the order of the roots, and by path within each. A folder inside another is met twice; its
/// files count once.
std::vector<FileRecord> filesToCompare(const Platform& platform,
                                       const std::vector<std::string>& excluded) {
    const std::vector<WalkRoot> roots = rootsOf(platform.layout);
    if (roots.empty()) return {};
    PlaceTable places;
    for (const std::string& path : excluded)
        places.leaveOut(path);
    for (const std::string& path : platform.layout.neverWalked)
        places.leaveOut(path);
    std::vector<std::unique_ptr<CopyVisitor>> workers;
    std::vector<TreeVisitor*> visitors;
    for (std::size_t thread = 0; thread < processorCount(); ++thread) {
        workers.push_back(std::make_unique<CopyVisitor>(roots.size()));
        visitors.push_back(workers.back().get());
    }
    std::vector<WalkRoot> walked;
    std::ranges::copy_if(roots, std::back_inserter(walked),
                         [&](const WalkRoot& root) { return !places.leavesOut(root.path); });
    if (walked.empty()) return {};
    TreeWalk(*platform.directories).run(walked, visitors, {.skipHidden = true, .places = &places});

    std::vector<FileRecord> files;
    std::unordered_set<std::string> seen;
    for (std::size_t root = 0; root < walked.size(); ++root) {
        std::vector<FileRecord> below;
        for (const auto& worker : workers)
            std::ranges::copy(worker->found(root), std::back_inserter(below));
        std::ranges::sort(below, {}, &FileRecord::path);
        for (FileRecord& file : below) {
            if (seen.insert(file.path).second) files.push_back(std::move(file));
        }
    }
    return files;
}

/// UTF-8 bytes that begin a character.
std::ptrdiff_t characters(const std::string& text) {
    return std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; });
}

/// The user's own files of a group by the length of their paths, each file once whatever its names.
/// What belongs to somebody else may be gone tomorrow: no copy of the user's makes way for it, and
/// it is not the program's to move.
std::vector<KnownFile> distinctFiles(std::vector<std::string> paths, const Platform& platform) {
    std::ranges::stable_sort(paths, {}, characters);
    std::vector<KnownFile> distinct;
    for (std::string& path : paths) {
        const auto attributes = platform.files->attributes(path);
        if (!attributes || attributes->kind != FileKind::regular) continue;
        if (attributes->owner != platform.userIdentifier) continue;
        const bool isKnown = std::ranges::any_of(distinct, [&](const KnownFile& file) {
            return file.attributes.identity == attributes->identity;
        });
        if (!isKnown) distinct.push_back({std::move(path), *attributes});
    }
    return distinct;
}

}  // namespace

bool KnownFile::isUnchanged(const FileManager& files) const {
    const auto now = files.attributes(path);
    return now && now->identity == attributes.identity && now->owner == attributes.owner &&
           now->logicalSize == attributes.logicalSize && now->modified == attributes.modified;
}

std::vector<DuplicateCopy> duplicateCopies(const Platform& platform,
                                           const std::vector<std::string>& excluded,
                                           const std::vector<std::string>& leaving) {
    const std::vector<FileRecord> files = filesToCompare(platform, excluded);
    if (files.size() < 2) return {};
    const auto result = DupFinder(*platform.clock, *platform.contents).find(files);
    const auto isLeaving = [&](const KnownFile& file) {
        return std::ranges::any_of(
            leaving, [&](const std::string& path) { return isAtOrBelow(file.path, path); });
    };
    std::vector<DuplicateCopy> copies;
    for (const DupFinder::Group& group : result.groups) {
        const std::vector<KnownFile> distinct = distinctFiles(group.paths, platform);
        const auto kept = std::ranges::find_if_not(distinct, isLeaving);
        if (kept == distinct.end()) continue;
        for (auto file = distinct.begin(); file != distinct.end(); ++file) {
            if (file == kept) continue;
            copies.push_back({*file, *kept, group.gb});
        }
    }
    return copies;
}

}  // namespace velto
