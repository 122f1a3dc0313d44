#include "bridge/folder_contents.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "bridge/json_text.h"
#include "platform/values/text.h"

namespace velto {
namespace {

/// Somebody waits for the answer; more threads in one folder hardly help.
constexpr ReadOptions listedAtOnce{.threads = 4};
constexpr std::size_t mostEntries = 50'000;  // of the largest; no page shows more in one folder

/// In the order of FolderState.
constexpr std::array<std::string_view, 7> stateNames{
    "measured", "unreadable", "withheld", "excluded", "own", "otherVolume", "alreadyWalked"};

std::string_view nameOf(FolderState state) { return stateNames[static_cast<std::size_t>(state)]; }

/// A folder of the tree, opened name by name so that no link leads elsewhere; null with `errno` set
/// when there is none any more or it is closed.
std::shared_ptr<OpenFolder> open(DirectoryReader& reader, const FolderTree& tree,
                                 FolderTree::Index index) {
    std::vector<FolderTree::Index> way;
    for (; tree[index].parent != FolderTree::none; index = tree[index].parent)
        way.push_back(index);
    std::shared_ptr<OpenFolder> folder = reader.open(std::string(tree.name(index)));
    for (auto next = way.rbegin(); folder && next != way.rend(); ++next)
        folder = reader.openChild(*folder, tree.name(*next));
    return folder;
}

/// What opening says of a folder that is not there, or whose name is a link or a file by now.
bool isAbsence(int error) { return error == ENOENT || error == ENOTDIR || error == ELOOP; }

/// What is in the folder now, by kind.
struct Listing {
    EntryList list;
    std::vector<std::string_view> folders;  // sorted
    std::vector<const DirectoryEntry*> files;
    std::int64_t others = 0;
    bool wasRead = false;
};

std::int64_t sizeOf(const DirectoryEntry& file) {
    return std::max<std::int64_t>(file.allocatedSize >= 0 ? file.allocatedSize : file.logicalSize,
                                  0);
}

void read(DirectoryReader& reader, OpenFolder& folder, Listing& listing) {
    // What was listed before the listing broke off is shown.
    listing.wasRead =
        reader.read(folder, listedAtOnce, listing.list) || !listing.list.entries().empty();
    for (const DirectoryEntry& entry : listing.list.entries()) {
        if (entry.kind == EntryKind::folder) {
            listing.folders.push_back(entry.name);
        } else if (entry.kind == EntryKind::regular) {
            listing.files.push_back(&entry);
        } else {
            ++listing.others;
        }
    }
    std::ranges::sort(listing.folders);
    if (listing.files.size() <= mostEntries) return;
    std::ranges::nth_element(listing.files, listing.files.begin() + mostEntries, std::greater(),
                             [](const DirectoryEntry* file) { return sizeOf(*file); });
    listing.others += static_cast<std::int64_t>(listing.files.size() - mostEntries);
    listing.files.resize(mostEntries);
}

FolderTree::Folder without(FolderTree::Folder folder, const Departures::Missing& gone) {
    folder.bytes = std::max<std::int64_t>(0, folder.bytes - gone.bytes);
    const auto files = static_cast<std::int64_t>(folder.files) - gone.files;
    folder.files = static_cast<std::uint32_t>(std::max<std::int64_t>(0, files));
    return folder;
}

/// Writes the answer piece by piece: a folder may have many thousand entries.
class Answer {
public:
    Answer(const FolderRequest& question, double measured)
        : question_(question), measured_(measured) {}

    std::string notFound(std::string_view state, const FolderTree::Folder* folder = nullptr) {
        begin(false, state, folder);
        return std::move(text_) + R"(,"folders":[],"entries":[],"more":0})";
    }

    std::string contents(const FolderTree& tree, FolderTree::Index index, const Listing& listing,
                         const VolumeUses& volumes, const Departures::Below& gone) {
        const FolderTree::Folder folder = without(tree[index], gone.all);
        begin(true, nameOf(FolderState::measured), &folder);
        text_.reserve(text_.size() + 64 * listing.list.entries().size());
        folders(tree, index, listing, volumes, gone);
        entries(listing);
        return std::move(text_) + fmt::format(R"(,"more":{}}})", listing.others);
    }

private:
    template <typename... Values>
    void add(fmt::format_string<Values...> format, Values&&... values) {
        fmt::format_to(std::back_inserter(text_), format, std::forward<Values>(values)...);
    }

    void begin(bool isFound, std::string_view state, const FolderTree::Folder* folder) {
        add(R"({{"request":{},"path":)", question_.request);
        appendPathJson(text_, question_.path);
        static constexpr FolderTree::Folder nothing;
        const FolderTree::Folder& known = folder == nullptr ? nothing : *folder;
        add(R"(,"found":{},"state":"{}","bytes":{},"files":{},"unreadable":{},"latest":{},)",
            isFound, state, known.bytes, known.files, known.unreadable, known.latest);
        add(R"("measured":{})", static_cast<std::int64_t>(measured_));
    }

    /// Those of the tree that are there still, and those that are new, in the order of their names.
    void folders(const FolderTree& tree, FolderTree::Index index, const Listing& listing,
                 const VolumeUses& volumes, const Departures::Below& gone) {
        text_ += R"(,"folders":[)";
        auto [child, last] = tree.children(index);
        for (const std::string_view name : listing.folders) {
            while (child < last && tree.name(child) < name)
                ++child;
            if (text_.back() == '}') text_ += ',';
            text_ += R"({"name":)";
            appendPathJson(text_, name);
            if (child < last && tree.name(child) == name) {
                const auto missing = gone.folders.find(name);
                known(missing == gone.folders.end() ? tree[child]
                                                    : without(tree[child], missing->second),
                      volumes.find(name), volumes.end());
            } else {
                text_ += R"(,"bytes":-1,"files":0,"latest":0,"state":"new","unreadable":0})";
            }
        }
        text_ += ']';
    }

    void known(const FolderTree::Folder& folder, VolumeUses::const_iterator volume,
               VolumeUses::const_iterator noVolume) {
        const FolderState state = folder.own.state;
        const bool hasBytes = state == FolderState::measured || state == FolderState::unreadable;
        const bool isVolume = state == FolderState::otherVolume && volume != noVolume;
        const std::int64_t bytes = hasBytes ? folder.bytes : isVolume ? volume->second.used : -1;
        add(R"(,"bytes":{},"files":{},"latest":{},"state":"{}","unreadable":{})", bytes,
            folder.files, folder.latest, nameOf(state), folder.unreadable);
        if (isVolume) add(R"(,"total":{})", volume->second.total);
        text_ += '}';
    }

    void entries(const Listing& listing) {
        text_ += R"(,"entries":[)";
        for (const DirectoryEntry* file : listing.files) {
            if (text_.back() == '}') text_ += ',';
            text_ += R"({"name":)";
            appendPathJson(text_, file->name);
            const bool isLinked = file->links > 1;
            add(R"(,"bytes":{},"modified":{},"linked":{})", sizeOf(*file),
                static_cast<std::int64_t>(std::clamp(file->modified, 0.0, 1e15)), isLinked);
            if (isLinked) add(R"(,"inode":"{}")", file->inode);
            text_ += '}';
        }
        text_ += ']';
    }

    const FolderRequest& question_;
    double measured_;
    std::string text_;
};

/// True when the folder would have been in the tree, had it been there.
bool couldBeNew(const FolderTree& tree, const std::string& path) {
    for (std::string above = parentFolder(path); !above.empty(); above = parentFolder(above)) {
        const FolderTree::Index index = tree.find(above);
        if (index != FolderTree::none) return tree[index].own.state == FolderState::measured;
    }
    return false;
}

}  // namespace

std::string folderContents(DirectoryReader& reader, const MeasuredFolders* measured,
                           const FolderRequest& question, const VolumeUses& volumes,
                           const Departures& departures) {
    Answer answer(question, measured == nullptr ? 0 : measured->measured);
    if (measured == nullptr || measured->tree->empty()) return answer.notFound("unmeasured");
    const FolderTree& tree = *measured->tree;
    const FolderTree::Index index = tree.find(question.path);
    if (index == FolderTree::none) {
        return answer.notFound(couldBeNew(tree, question.path) ? "new" : "unmeasured");
    }
    // What was left out stays so: the system keeps some of it from programs, and asks the user.
    const FolderState state = tree[index].own.state;
    if (state != FolderState::measured) return answer.notFound(nameOf(state), &tree[index]);
    if (question.isWithheld) return answer.notFound(nameOf(FolderState::withheld), &tree[index]);

    Listing listing;
    errno = 0;
    const auto folder = open(reader, tree, index);
    if (folder) read(reader, *folder, listing);
    if (!folder || !listing.wasRead) {
        return answer.notFound(isAbsence(errno) ? "gone" : nameOf(FolderState::unreadable),
                               &tree[index]);
    }
    return answer.contents(tree, index, listing, volumes, departures.below(tree, question.path));
}

std::vector<std::string> volumesInside(const MeasuredFolders& measured, const std::string& path) {
    std::vector<std::string> names;
    const FolderTree& tree = *measured.tree;
    const FolderTree::Index index = tree.empty() ? FolderTree::none : tree.find(path);
    if (index == FolderTree::none) return names;
    const auto [first, last] = tree.children(index);
    for (FolderTree::Index child = first; child < last; ++child) {
        if (tree[child].own.state == FolderState::otherVolume) names.emplace_back(tree.name(child));
    }
    return names;
}

}  // namespace velto
