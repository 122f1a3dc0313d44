#include "cleaning/folder_size.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "platform/parallel.h"
#include "platform/values/text.h"
#include "platform/walk/TreeWalk.h"

namespace velto {
namespace {

/// Sparse files may claim more than all disks hold: a sum must not wrap into a small number.
std::int64_t sum(std::int64_t left, std::int64_t right) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    return right > most - left ? most : left + right;
}

/// Adds up what one worker meets, by the root below which it lies.
class SizeVisitor final : public TreeVisitor {
public:
    explicit SizeVisitor(std::size_t roots) : totals_(roots) {}

    void file(const WalkedFolder& folder, const DirectoryEntry& entry, const Place*) override {
        add(folder, entry);
    }
    void other(const WalkedFolder& folder, const DirectoryEntry& entry) override {
        add(folder, entry);
    }

    const FolderMeasure& total(std::size_t root) const { return totals_[root]; }

private:
    void add(const WalkedFolder& folder, const DirectoryEntry& entry) {
        FolderMeasure& total = totals_[folder.root()];
        total.newest = std::max(total.newest, entry.modified);
        if (entry.logicalSize > 0) total.bytes = sum(total.bytes, entry.logicalSize);
    }

    std::vector<FolderMeasure> totals_;
};

}  // namespace

std::vector<std::optional<std::int64_t>> folderSizes(DirectoryReader& reader,
                                                     const std::vector<std::string>& folders) {
    std::vector<std::optional<std::int64_t>> sizes;
    for (const auto& measure : folderMeasures(reader, folders))
        sizes.push_back(measure ? std::optional(measure->bytes) : std::nullopt);
    return sizes;
}

std::vector<std::optional<FolderMeasure>> folderMeasures(DirectoryReader& reader,
                                                         const std::vector<std::string>& folders) {
    if (folders.empty()) return {};
    std::vector<WalkRoot> roots;
    roots.reserve(folders.size());
    for (const std::string& folder : folders) {
        // The walk refuses a link after the folder above.
        roots.push_back({.path = folder, .resolved = parentFolder(folder)});
    }
    std::vector<std::unique_ptr<SizeVisitor>> sizes;
    std::vector<TreeVisitor*> visitors;
    for (std::size_t thread = 0; thread < processorCount(); ++thread) {
        sizes.push_back(std::make_unique<SizeVisitor>(roots.size()));
        visitors.push_back(sizes.back().get());
    }
    const TreeWalk::Result walked = TreeWalk(reader).run(roots, visitors, {.sizeEveryEntry = true});

    std::vector<std::optional<FolderMeasure>> totals(roots.size());
    for (std::size_t root = 0; root < roots.size(); ++root) {
        if (walked.rootErrors[root] != 0) continue;
        FolderMeasure total;
        for (const auto& visitor : sizes) {
            total.bytes = sum(total.bytes, visitor->total(root).bytes);
            total.newest = std::max(total.newest, visitor->total(root).newest);
        }
        totals[root] = total;
    }
    return totals;
}

}  // namespace velto
