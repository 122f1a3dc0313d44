#include "analysis/again/walk_assembly.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include "analysis/folders/saturated.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using FolderNumber = FolderTreeBuilder::Number;

constexpr std::int64_t uncountable = std::numeric_limits<std::int64_t>::max();

/// Where a folder of the new walk comes from.
struct Origin {
    bool isRead = false;       // on this walk, else it stayed
    std::uint32_t number = 0;  // as read, or in the earlier walk
};

struct Child {
    FolderNumber parent = 0;
    std::string_view name;
    Origin origin;
};

class Assembly {
public:
    explicit Assembly(const NotedWalk& noted)
        : noted_(noted), read_(noted.numbers), isThere_(noted.numbers) {}

    std::optional<AssembledWalk> run() {
        takeRead();
        if (!isOneVolume() || !isThere_[0] || !takeLinked()) return std::nullopt;
        takeChildren();
        result_.places.assign(noted_.numbers, KeptFolder::none);
        if (!putInOrder() || !everyRootIsReached()) return std::nullopt;
        return std::move(result_);
    }

private:
    const KeptWalk& earlier() const { return noted_.earlier->walk; }

    /// The folders that were read or named on this walk, by their numbers.
    void takeRead() {
        for (const FolderRecorder* recorder : noted_.recorders) {
            recorder->forEach(0, [&](const FolderTreeBuilder::Entry& entry) {
                KeptFolder& folder = read_[entry.number];
                folder.name = entry.name;
                folder.facts = entry.facts;
                folder.parent = entry.parent;
                isThere_[entry.number] = true;
            });
        }
        for (const NotingVisitor* visitor : noted_.visitors) {
            for (const NotingVisitor::Note& note : visitor->notes())
                take(note, *visitor);
        }
        for (FolderNumber number = 0; number < noted_.numbers; ++number) {
            const FolderState state = read_[number].facts.state;
            const bool isMounted =
                state == FolderState::otherVolume || state == FolderState::alreadyWalked;
            // What is mounted comes and goes untold.
            if (isThere_[number] && isMounted) read_[read_[number].parent].isReadAgain = true;
        }
    }

    void take(const NotingVisitor::Note& note, const NotingVisitor& visitor) {
        KeptFolder& folder = read_[note.number];
        const KeptFolder& noted = note.folder;
        const std::string_view name = folder.name;
        const std::uint32_t parent = folder.parent;
        folder = noted;
        folder.name = name;
        folder.parent = parent;
        folder.firstCount = addCounts(visitor.counts(), noted);
        folder.firstCandidate = static_cast<std::uint32_t>(result_.walk.candidates.size());
        for (std::uint32_t place = 0; place < noted.candidates; ++place) {
            const FileRecord& file = visitor.worker().candidates()[noted.firstCandidate + place];
            const std::string& kept = result_.walk.names.emplace_back(lastPathComponent(file.path));
            result_.walk.candidates.push_back({kept, file.size, file.length});
        }
    }

    std::uint32_t addCounts(const std::vector<KeptCount>& counts, const KeptFolder& folder) {
        const auto first = static_cast<std::uint32_t>(result_.walk.counts.size());
        const auto begin = counts.begin() + folder.firstCount;
        result_.walk.counts.insert(result_.walk.counts.end(), begin, begin + folder.counts);
        return first;
    }

    /// Roots that were read, all through one mount.
    bool isOneVolume() const {
        const FolderRecording::Root& home = noted_.roots.front();
        for (const FolderRecording::Root& root : noted_.roots) {
            if (!isThere_[root.number]) continue;
            if (root.device != home.device || root.mount != home.mount) return false;
        }
        return true;
    }

    /// Notes which files have several names. False when one that had a single name when it was last
    /// seen has others now that were not found: they may lie in folders that nothing was told of.
    bool takeLinked() {
        struct Names {
            std::uint32_t found = 0;
            std::uint32_t links = 0;
        };
        std::map<std::uint64_t, Names> files;
        for (const FolderRecorder* recorder : noted_.recorders) {
            for (const FolderRecorder::Linked& name : recorder->linked()) {
                Names& names = files[name.identity.inode];
                ++names.found;
                names.links = std::max<std::uint32_t>(names.links, name.links);
            }
        }
        for (const auto& [inode, names] : files) {
            if (noted_.earlier != nullptr && names.found < names.links &&
                !std::ranges::binary_search(earlier().linked, inode)) {
                return false;
            }
            result_.walk.linked.push_back(inode);
        }
        return true;
    }

    void takeChildren() {
        for (FolderNumber number = 0; number < noted_.numbers; ++number) {
            if (!isThere_[number] || read_[number].parent == FolderTreeBuilder::noParent) continue;
            children_.push_back({read_[number].parent, read_[number].name, {true, number}});
        }
        if (noted_.earlier != nullptr) {
            readAs_.assign(earlier().folders.size(), KeptFolder::none);
            for (std::uint32_t root = 0; root < noted_.roots.size(); ++root)
                readAs_[noted_.earlier->readings.folders[root]] = root;
        }
        for (const NotingVisitor* visitor : noted_.visitors) {
            for (const NotingVisitor::Stayed& stayed : visitor->stayed())
                children_.push_back(
                    {stayed.parent, earlier().folders[stayed.folder].name, {false, stayed.folder}});
        }
        std::ranges::sort(children_, [](const Child& one, const Child& other) {
            return one.parent != other.parent ? one.parent < other.parent : one.name < other.name;
        });
        firstChild_.assign(std::size_t{noted_.numbers} + 1, 0);
        for (const Child& child : children_)
            ++firstChild_[child.parent + 1];
        for (std::size_t number = 1; number < firstChild_.size(); ++number)
            firstChild_[number] += firstChild_[number - 1];
    }

    /// Level by level, as the folders of a KeptWalk stand.
    bool putInOrder() {
        std::vector<Origin> origins{{true, 0}};
        auto& folders = result_.walk.folders;
        folders.push_back(read_[0]);
        folders[0].parent = KeptFolder::none;
        std::int64_t hidden = 0;
        for (std::uint32_t index = 0; index < origins.size(); ++index) {
            const Origin origin = origins[index];
            const auto firstChild = static_cast<std::uint32_t>(folders.size());
            if (origin.isRead) result_.places[origin.number] = index;
            const bool isGood = origin.isRead ? addRead(origin.number, index, origins)
                                              : addStayed(origin.number, index, origins);
            if (!isGood || folders.size() >= KeptFolder::none) return false;
            KeptFolder& folder = folders[index];
            folder.firstChild = firstChild;
            folder.children = static_cast<std::uint32_t>(folders.size()) - firstChild;
            hidden = saturatedSum(hidden, folder.hiddenBytes);
        }
        return hidden != uncountable;
    }

    bool addRead(FolderNumber number, std::uint32_t index, std::vector<Origin>& origins) {
        std::string_view before;
        for (std::size_t place = firstChild_[number]; place < firstChild_[number + 1]; ++place) {
            const Child& child = children_[place];
            if (child.name == before) return false;  // made anew while it was listed
            before = child.name;
            if (!add(child.origin, index, origins)) return false;
        }
        return true;
    }

    bool addStayed(std::uint32_t kept, std::uint32_t index, std::vector<Origin>& origins) {
        const KeptFolder& folder = earlier().folders[kept];
        for (std::uint32_t place = 0; place < folder.children; ++place) {
            if (!add({false, folder.firstChild + place}, index, origins)) return false;
        }
        return true;
    }

    /// One that stayed may be one that was read by itself. False when it could not be.
    bool add(Origin origin, std::uint32_t parent, std::vector<Origin>& origins) {
        auto& folders = result_.walk.folders;
        if (origin.isRead) {
            folders.push_back(read_[origin.number]);
        } else if (const std::uint32_t root = readAs_[origin.number]; root != KeptFolder::none) {
            const std::string_view name = earlier().folders[origin.number].name;
            origin = {true, root};
            if (!isThere_[root]) return false;
            folders.push_back(read_[root]);
            folders.back().name = name;
        } else {
            const KeptFolder& kept = earlier().folders[origin.number];
            if (kept.wasEntered() && !noted_.earlier->readings.canStay[origin.number]) return false;
            folders.push_back(kept);
            KeptFolder& folder = folders.back();
            folder.firstCount = addCounts(earlier().counts, kept);
            folder.firstCandidate = static_cast<std::uint32_t>(result_.walk.candidates.size());
            const auto first = earlier().candidates.begin() + kept.firstCandidate;
            result_.walk.candidates.insert(result_.walk.candidates.end(), first,
                                           first + kept.candidates);
        }
        folders.back().parent = parent;
        origins.push_back(origin);
        return true;
    }

    /// Otherwise what was read of one would count, and stand nowhere; or it stands in two places.
    bool everyRootIsReached() const {
        for (const FolderRecording::Root& root : noted_.roots) {
            if (isThere_[root.number] && result_.places[root.number] == KeptFolder::none) {
                return false;
            }
        }
        return true;
    }

    const NotedWalk& noted_;
    std::vector<KeptFolder> read_;         // by number; `parent` is a number too
    std::vector<bool> isThere_;            // the same
    std::vector<Child> children_;          // by parent and name
    std::vector<std::size_t> firstChild_;  // among these, by the parent's number
    std::vector<std::uint32_t> readAs_;    // the root's number, by the place in the earlier walk
    AssembledWalk result_;
};

}  // namespace

std::optional<AssembledWalk> assembleWalk(const NotedWalk& noted) { return Assembly(noted).run(); }

AssembledFolders foldersOf(const AssembledWalk& assembled,
                           const std::vector<FolderRecorder*>& recorders) {
    const std::vector<KeptFolder>& folders = assembled.walk.folders;
    std::vector<FolderTreeBuilder::Entry> entries(folders.size());
    AssembledFolders result;
    for (std::uint32_t index = 0; index < folders.size(); ++index) {
        const KeptFolder& folder = folders[index];
        entries[index] = {
            .number = index, .parent = folder.parent, .name = folder.name, .facts = folder.facts};
        result.hiddenBytes = saturatedSum(result.hiddenBytes, folder.hiddenBytes);
    }
    std::vector<FolderRecorder::Linked> linked;
    for (FolderRecorder* recorder : recorders) {
        for (FolderRecorder::Linked name : recorder->takeLinked()) {
            name.folder = assembled.places[name.folder];
            linked.push_back(name);
        }
    }
    addTree(result, std::move(entries), std::move(linked));
    return result;
}

}  // namespace velto
