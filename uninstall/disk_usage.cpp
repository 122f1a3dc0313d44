#include "uninstall/disk_usage.h"

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

class UsageVisitor final : public TreeVisitor {
public:
    explicit UsageVisitor(std::size_t roots) : totals_(roots, 0) {}

    void file(const WalkedFolder& folder, const DirectoryEntry& entry, const Place*) override {
        const std::int64_t bytes =
            entry.allocatedSize >= 0 ? entry.allocatedSize : entry.logicalSize;
        std::int64_t& total = totals_[folder.root()];
        if (bytes > 0) total = sum(total, bytes);
    }

    std::int64_t total(std::size_t root) const { return totals_[root]; }

private:
    std::vector<std::int64_t> totals_;
};

}  // namespace

std::vector<std::int64_t> allocatedSizes(const FileManager& files, DirectoryReader& reader,
                                         const std::vector<std::string>& paths) {
    std::vector<std::int64_t> sizes(paths.size(), 0);
    std::vector<WalkRoot> roots;
    std::vector<std::size_t> pathOfRoot;
    for (std::size_t index = 0; index < paths.size(); ++index) {
        const auto attributes = files.attributes(paths[index]);
        if (!attributes) continue;
        if (attributes->kind == FileKind::regular) sizes[index] = attributes->allocatedSize;
        if (attributes->kind != FileKind::folder) continue;
        // Links above the folder are followed, the folder itself must not have become one.
        roots.push_back({.path = paths[index], .resolved = parentFolder(paths[index])});
        pathOfRoot.push_back(index);
    }
    if (roots.empty()) return sizes;

    std::vector<std::unique_ptr<UsageVisitor>> parts;
    std::vector<TreeVisitor*> visitors;
    for (std::size_t thread = 0; thread < processorCount(); ++thread) {
        parts.push_back(std::make_unique<UsageVisitor>(roots.size()));
        visitors.push_back(parts.back().get());
    }
    TreeWalk(reader).run(roots, visitors);
    for (std::size_t root = 0; root < roots.size(); ++root) {
        for (const auto& part : parts) {
            std::int64_t& size = sizes[pathOfRoot[root]];
            size = sum(size, part->total(root));
        }
    }
    return sizes;
}

}  // namespace velto
