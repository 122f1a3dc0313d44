#include "analysis/folders/folder_assembly.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "analysis/folders/saturated.h"

namespace velto {
namespace {

using Entry = FolderTreeBuilder::Entry;
using Number = FolderTreeBuilder::Number;
using Linked = FolderRecorder::Linked;

/// The byte order of paths, of which none is put together.
class PathOrder {
public:
    explicit PathOrder(const std::vector<Entry>& byNumber) : byNumber_(byNumber) {}

    bool standsBefore(const Linked& one, const Linked& other) const {
        Component left{.folder = one.folder, .name = one.name};
        Component right{.folder = other.folder, .name = other.name};
        std::size_t leftDepth = depth(one.folder);
        std::size_t rightDepth = depth(other.folder);
        for (; leftDepth > rightDepth; --leftDepth)
            ascend(left);
        for (; rightDepth > leftDepth; --rightDepth)
            ascend(right);
        while (left.folder != right.folder) {
            ascend(left);
            ascend(right);
        }
        return comesBefore(left, right);
    }

private:
    /// A name in a folder, and whether a slash follows it in the path.
    struct Component {
        Number folder;
        std::string_view name;
        bool goesOn = false;
    };

    std::size_t depth(Number folder) const {
        std::size_t depth = 0;
        for (; folder != FolderTreeBuilder::noParent; folder = byNumber_[folder].parent)
            ++depth;
        return depth;
    }

    void ascend(Component& component) const {
        const Entry& folder = byNumber_[component.folder];
        component = {.folder = folder.parent, .name = folder.name, .goesOn = true};
    }

    static bool comesBefore(const Component& one, const Component& other) {
        const std::size_t common = std::min(one.name.size(), other.name.size());
        const int order = one.name.substr(0, common).compare(other.name.substr(0, common));
        if (order != 0) return order < 0;
        return next(one, common) < next(other, common);
    }
    static int next(const Component& component, std::size_t place) {
        if (place < component.name.size()) return static_cast<unsigned char>(component.name[place]);
        return component.goesOn ? '/' : -1;
    }

    const std::vector<Entry>& byNumber_;
};

/// There may be many millions: each recorder's memory is given back on the way.
std::vector<Linked> allLinked(const std::vector<FolderRecorder*>& recorders) {
    std::vector<Linked> linked;
    for (FolderRecorder* recorder : recorders) {
        const std::vector<Linked> part = recorder->takeLinked();
        linked.insert(linked.end(), part.begin(), part.end());
    }
    return linked;
}

bool wasWalked(const Entry& entry) {
    const FolderState state = entry.facts.state;
    return state == FolderState::measured || state == FolderState::unreadable;
}

/// Lets each file of several names count for the first one. Returns the bytes of those of which no
/// name is in a category.
std::int64_t countLinked(std::vector<Linked> linked, std::vector<Entry>& byNumber) {
    std::ranges::sort(linked, {}, &Linked::identity);
    const PathOrder order(byNumber);
    std::int64_t hidden = 0;
    for (auto name = linked.begin(); name != linked.end();) {
        const auto end = std::find_if(name, linked.end(), [&](const Linked& other) {
            return other.identity != name->identity;
        });
        const auto first = std::min_element(name, end, [&](const Linked& one, const Linked& other) {
            return order.standsBefore(one, other);
        });
        FolderFacts& facts = byNumber[first->folder].facts;
        facts.ownBytes = saturatedSum(facts.ownBytes, first->bytes);
        if (first->isRegular) ++facts.ownFiles;
        if (std::none_of(name, end, [](const Linked& one) { return one.isCounted; })) {
            hidden = saturatedSum(hidden, first->bytes);
        }
        name = end;
    }
    return hidden;
}

}  // namespace

AssembledFolders assembleFolders(const std::vector<FolderRecorder*>& recorders, Number numbers) {
    AssembledFolders result;
    std::vector<Entry> byNumber(numbers);
    for (FolderRecorder* recorder : recorders) {
        recorder->moveTo(byNumber);
        result.hiddenBytes = saturatedSum(result.hiddenBytes, recorder->hiddenBytes());
    }
    addTree(result, std::move(byNumber), allLinked(recorders));
    return result;
}

void addTree(AssembledFolders& result, std::vector<Entry> byNumber, std::vector<Linked> linked) {
    const std::int64_t hidden = countLinked(std::move(linked), byNumber);
    result.hiddenBytes = saturatedSum(result.hiddenBytes, hidden);
    // A root that could not be opened has a number and no record.
    std::erase_if(byNumber, [](const Entry& entry) { return entry.name.empty(); });
    result.tree = FolderTreeBuilder::build(byNumber);
}

WalkedFolders walkedFolders(const std::vector<FolderRecorder*>& recorders,
                            const std::vector<FolderRecording::Root>& roots, Number numbers) {
    std::vector<Number> parents(numbers, FolderTreeBuilder::noParent);
    for (const FolderRecorder* recorder : recorders)
        recorder->forEach(0, [&](const Entry& entry) { parents[entry.number] = entry.parent; });
    std::map<Number, std::uint64_t> devices;
    for (const FolderRecording::Root& root : roots)
        devices[root.number] = root.device;

    std::vector<WalkedFolders::Identity> found;
    const auto add = [&](const Entry& entry) {
        if (!wasWalked(entry)) return;
        Number root = entry.number;
        while (!devices.contains(root) && parents[root] != FolderTreeBuilder::noParent)
            root = parents[root];
        const auto device = devices.find(root);
        if (device != devices.end()) found.push_back({device->second, entry.facts.inode});
    };
    for (const FolderRecorder* recorder : recorders)
        recorder->forEach(0, add);
    WalkedFolders walked;
    walked.add(found);
    return walked;
}

void addWalked(WalkedFolders& walked, const std::vector<FolderRecorder*>& recorders,
               const std::vector<std::size_t>& counts, std::uint64_t device) {
    std::vector<WalkedFolders::Identity> found;
    for (std::size_t index = 0; index < recorders.size(); ++index) {
        recorders[index]->forEach(counts[index], [&](const Entry& entry) {
            if (wasWalked(entry)) found.push_back({device, entry.facts.inode});
        });
    }
    walked.add(found);
}

}  // namespace velto
