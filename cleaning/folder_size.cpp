#include "cleaning/folder_size.h"

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
    explicit SizeVisitor(std::size_t roots) : totals_(roots, 0) {}

    void file(const WalkedFolder& folder, const DirectoryEntry& entry, const Place*) override {
        add(folder, entry);
    }
    void other(const WalkedFolder& folder, const DirectoryEntry& entry) override {
        add(folder, entry);
    }

    std::int64_t total(std::size_t root) const { return totals_[root]; }

private:
    void add(const WalkedFolder& folder, const DirectoryEntry& entry) {
        if (entry.logicalSize <= 0) return;
        std::int64_t& total = totals_[folder.root()];
        total = sum(total, entry.logicalSize);
    }

    std::vector<std::int64_t> totals_;
};

}  // namespace

std::vector<std::optional<std::int64_t>> folderSizes(DirectoryReader& reader,
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

    std::vector<std::optional<std::int64_t>> totals(roots.size());
    for (std::size_t root = 0; root < roots.size(); ++root) {
        if (walked.rootErrors[root] != 0) continue;
        std::int64_t total = 0;
        for (const auto& visitor : sizes)
            total = sum(total, visitor->total(root));
        totals[root] = total;
    }
    return totals;
}

}  // namespace velto
