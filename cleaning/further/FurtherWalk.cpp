#include "cleaning/further/FurtherWalk.h"

#include <algorithm>
#include <array>
#include <limits>
#include <tuple>

#include "cleaning/further/rule_places.h"
#include "platform/parallel.h"
#include "platform/values/text.h"
#include "platform/walk/TreeWalk.h"

namespace velto {
namespace {

// What the mark of a folder says. From `firstCandidate` on it is what lies in that candidate.
constexpr std::uint32_t searched = 0;  // projects are looked for
constexpr std::uint32_t passed = 1;    // only on the way to a place
constexpr std::uint32_t firstCandidate = 2;

// `Place::role` of what is only passed; greater ones are a candidate's number and two.
constexpr std::uint32_t passedRole = 1;

// Folders that the system shows as one thing; nobody keeps a project in one.
constexpr auto packageEndings = std::to_array<std::string_view>(
    {".app", ".bundle", ".framework", ".photoslibrary", ".musiclibrary", ".fcpbundle"});

// A walk that waits for the disk asks for as many folders at once.
constexpr std::size_t mostThreads = 16;

bool isPackage(std::string_view name) {
    return std::ranges::any_of(packageEndings,
                               [&](std::string_view ending) { return name.ends_with(ending); });
}

std::int64_t saturatedSum(std::int64_t left, std::int64_t right) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    return right > most - left ? most : left + right;
}

}  // namespace

class FurtherWalk::Visitor final : public TreeVisitor {
public:
    struct Total {
        std::int64_t bytes = 0;
        double newest = 0;
        bool isThere = false;
        bool isWhole = true;
        bool isRead = true;
    };

    struct LinkedFile {
        std::uint32_t candidate = 0;
        std::uint64_t inode = 0;
        std::uint32_t names = 0;  // here and elsewhere
        std::int64_t bytes = 0;
    };

    /// A folder that was looked through; a folder's number is greater than that of the one around
    /// it.
    struct SearchedFolder {
        std::uint32_t number = 0;
        std::uint32_t parent = 0;
        double newest = 0;  // of the files directly in it
        double own = 0;     // the folder's own date: something came or went
    };

    explicit Visitor(FurtherWalk& walk) : walk_(walk) {}

    bool enter(WalkedFolder& folder) override {
        const Place* place = folder.place();
        if (folder.parent() == nullptr || folder.mark == searched) return search(folder, place);
        if (folder.mark >= firstCandidate) return true;
        if (place != nullptr && place->role > passedRole) folder.mark = place->role;
        return place != nullptr;
    }

    bool begin(const WalkedFolder& folder, const FolderStatus& status) override {
        newest_ = 0;
        own_ = status.modified;
        if (folder.parent() == nullptr) {
            walk_.device_ = status.device;
            walk_.mount_ = status.mount;
            return true;
        }
        const bool isElsewhere =
            status.device != walk_.device_ || (status.mount != 0 && status.mount != walk_.mount_);
        if (folder.mark < firstCandidate) return !isElsewhere;
        Total& total = totalOf(folder.mark);
        if (isElsewhere) {
            total.isWhole = false;
            return false;
        }
        total.isThere = true;
        total.bytes = saturatedSum(total.bytes, std::max<std::int64_t>(0, status.allocatedSize));
        total.newest = std::max(total.newest, status.modified);
        return true;
    }

    void file(const WalkedFolder& folder, const DirectoryEntry& entry,
              const Place* place) override {
        if (folder.mark >= firstCandidate) return add(folder.mark, entry);
        if (place != nullptr && place->role > passedRole) {
            totalOf(place->role).isThere = true;
            add(place->role, entry);
        }
        newest_ = std::max(newest_, entry.modified);
    }

    void other(const WalkedFolder& folder, const DirectoryEntry& entry) override {
        const bool isFolder = entry.kind == EntryKind::folder;
        if (folder.mark >= firstCandidate && !isFolder) add(folder.mark, entry);
    }

    void unreadable(const WalkedFolder& folder, const DirectoryEntry&) override { notRead(folder); }
    void unopened(const WalkedFolder& folder) override { notRead(folder); }

    void leftOut(const WalkedFolder& folder, const DirectoryEntry&, const Place&) override {
        if (folder.mark >= firstCandidate) totalOf(folder.mark).isWhole = false;
    }

    void end(const WalkedFolder& folder, bool isComplete) override {
        if (!isComplete) notRead(folder);
        if (folder.mark != searched) return;
        const WalkedFolder* parent = folder.parent();
        searched_.push_back({.number = folder.number,
                             .parent = parent == nullptr ? 0 : parent->number,
                             .newest = newest_,
                             .own = own_});
    }

    const std::vector<Total>& totals() const { return totals_; }
    const std::vector<LinkedFile>& linked() const { return linked_; }
    const std::vector<SearchedFolder>& searchedFolders() const { return searched_; }

private:
    /// A folder of the user's own, or the home itself.
    bool search(WalkedFolder& folder, const Place* place) {
        const std::uint32_t role = place == nullptr ? 0 : place->role;
        if (role != 0) {
            folder.mark = role == passedRole ? passed : role;
            return true;
        }
        if (const WalkedFolder* parent = folder.parent()) {
            const auto project = projectIn(*parent, folder.name());
            if (project) {
                folder.mark = *project;
                return true;
            }
            if (folder.isHidden || isPackage(folder.name())) {
                folder.mark = passed;
                return place != nullptr;
            }
        }
        folder.number = walk_.nextNumber_.fetch_add(1, std::memory_order_relaxed);
        return true;
    }

    std::optional<std::uint32_t> projectIn(const WalkedFolder& parent, std::string_view name) {
        const bool isNamed = std::ranges::find(walk_.projectRules_, name, &ProjectRule::name) !=
                             walk_.projectRules_.end();
        if (!isNamed) return std::nullopt;
        return walk_.noteProject(parent.path(), name, parent.number);
    }

    Total& totalOf(std::uint32_t mark) {
        const std::size_t index = mark - firstCandidate;
        if (index >= totals_.size()) totals_.resize(index + 1);
        return totals_[index];
    }

    void add(std::uint32_t mark, const DirectoryEntry& entry) {
        Total& total = totalOf(mark);
        total.newest = std::max(total.newest, entry.modified);
        const std::int64_t bytes =
            entry.allocatedSize >= 0 ? entry.allocatedSize : entry.logicalSize;
        if (entry.links > 1 && entry.inode != 0) {
            linked_.push_back({.candidate = mark - firstCandidate,
                               .inode = entry.inode,
                               .names = entry.links,
                               .bytes = bytes});
        } else if (bytes > 0) {
            total.bytes = saturatedSum(total.bytes, bytes);
        }
    }

    void notRead(const WalkedFolder& folder) {
        if (folder.mark >= firstCandidate) totalOf(folder.mark).isRead = false;
    }

    FurtherWalk& walk_;
    double newest_ = 0;  // of the folder whose turn it is
    double own_ = 0;     // the same
    std::vector<Total> totals_;
    std::vector<LinkedFile> linked_;
    std::vector<SearchedFolder> searched_;
};

FurtherWalk::FurtherWalk(const Platform& platform, const std::vector<FurtherRule>& rules)
    : platform_(platform), rules_(rules) {
    for (std::size_t rule = 0; rule < rules.size(); ++rule) {
        if (!rules[rule].isFor(platform.layout.kind)) continue;
        for (const std::string& name : rules[rule].names)
            projectRules_.push_back({.rule = rule, .name = name});
    }
    const HomeLayout& layout = platform.layout;
    for (const auto* folders : {&layout.libraryRoots, &layout.applicationRoots}) {
        for (const std::string& folder : *folders) {
            if (folder.starts_with(layout.home + "/")) places_.at(folder).role = passedRole;
        }
    }
    for (const std::string& folder : layout.neverWalked)
        places_.leaveOut(folder);
    if (!layout.systemTrash.empty()) places_.leaveOut(layout.systemTrash);
}

void FurtherWalk::add(std::size_t rule, const std::string& path) {
    Place& place = places_.at(path);
    if (place.role > passedRole) return;
    place.role = static_cast<std::uint32_t>(candidates_.size()) + firstCandidate;
    candidates_.push_back({.rule = rule, .path = path, .project = 0});
}

/// The mark of a project's folder `name`; nothing when no rule takes it.
std::optional<std::uint32_t> FurtherWalk::noteProject(const std::string& folder,
                                                      std::string_view name,
                                                      std::uint32_t project) {
    const std::string path = folder + "/" + std::string(name);
    for (const ProjectRule& row : projectRules_) {
        const FurtherRule& rule = rules_[row.rule];
        if (row.name != name || !hasMarker(*platform_.files, rule, folder) ||
            !holdsAll(*platform_.files, rule, path)) {
            continue;
        }
        const std::lock_guard guard(lock_);
        candidates_.push_back({.rule = row.rule, .path = path, .project = project});
        return static_cast<std::uint32_t>(candidates_.size() - 1) + firstCandidate;
    }
    return std::nullopt;
}

std::vector<FurtherWalk::Found> FurtherWalk::run(const CancellationFlag& cancelled) {
    const std::string& home = platform_.layout.home;
    std::vector<std::unique_ptr<Visitor>> owned;
    std::vector<TreeVisitor*> visitors;
    for (std::size_t thread = 0; thread < std::max(processorCount(), mostThreads); ++thread) {
        owned.push_back(std::make_unique<Visitor>(*this));
        visitors.push_back(owned.back().get());
    }
    const WalkOptions options{.allocatedOfEveryFile = true,
                              .folderStatus = true,
                              .places = &places_,
                              .firstThreads = processorCount()};
    TreeWalk(*platform_.directories)
        .run({{.path = home, .mark = searched, .resolved = home}}, visitors, options, cancelled);
    return collect(owned);
}

std::vector<FurtherWalk::Found> FurtherWalk::collect(
    const std::vector<std::unique_ptr<Visitor>>& visitors) const {
    std::vector<Found> found;
    std::vector<bool> isThere(candidates_.size());
    for (const Candidate& candidate : candidates_)
        found.push_back({.rule = candidate.rule, .path = candidate.path});
    std::vector<Visitor::LinkedFile> linked;
    std::vector<double> newest(nextNumber_.load());
    std::vector<double> own(newest.size());
    std::vector<std::uint32_t> parents(newest.size());
    for (const auto& visitor : visitors) {
        for (std::size_t index = 0; index < visitor->totals().size(); ++index) {
            const auto& total = visitor->totals()[index];
            Found& one = found[index];
            one.bytes = saturatedSum(one.bytes, total.bytes);
            one.newest = std::max(one.newest, total.newest);
            one.isWhole = one.isWhole && total.isWhole;
            one.isRead = one.isRead && total.isRead;
            isThere[index] = isThere[index] || total.isThere;
        }
        linked.insert(linked.end(), visitor->linked().begin(), visitor->linked().end());
        for (const auto& folder : visitor->searchedFolders()) {
            newest[folder.number] = folder.newest;
            own[folder.number] = folder.own;
            parents[folder.number] = folder.parent;
        }
    }
    // What is in a folder is in all those around it. Its own date counts for those alone: what was
    // moved out of a project and put back has changed the project's folder, and nothing else.
    for (std::size_t number = newest.size(); number-- > 1;) {
        double& above = newest[parents[number]];
        above = std::max({above, newest[number], own[number]});
    }
    std::ranges::sort(linked, {},
                      [](const auto& file) { return std::tuple(file.candidate, file.inode); });
    for (auto file = linked.begin(); file != linked.end();) {
        const auto next = std::find_if(file, linked.end(), [&](const auto& other) {
            return other.candidate != file->candidate || other.inode != file->inode;
        });
        Found& one = found[file->candidate];
        one.bytes = saturatedSum(one.bytes, file->bytes);
        if (next - file < file->names) one.linked = saturatedSum(one.linked, file->bytes);
        file = next;
    }
    std::vector<Found> there;
    for (std::size_t index = 0; index < found.size(); ++index) {
        if (!isThere[index]) continue;
        const std::uint32_t project = candidates_[index].project;
        if (project != 0) found[index].project = newest[project];
        there.push_back(std::move(found[index]));
    }
    std::ranges::sort(there, {}, &Found::path);
    return there;
}

}  // namespace velto
