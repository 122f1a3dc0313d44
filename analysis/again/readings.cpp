#include "analysis/again/readings.h"

#include <algorithm>
#include <string_view>

#include "platform/folded_text.h"
#include "platform/values/text.h"

namespace velto {
namespace {

// Of larger homes at most a half is read folder by folder.
constexpr std::size_t alwaysAllowed = 1'000;
// Names that are folded to find one that is written otherwise; some tenth of a second.
constexpr std::size_t mostFolded = 100'000;

// Where the volume of the homes is mounted by itself; events may name folders by either path.
constexpr std::string_view dataVolume = "/System/Volumes/Data";

std::string_view pathOfChange(std::string_view path, std::string_view home) {
    if (!isAtOrBelow(home, dataVolume) && isAtOrBelow(path, dataVolume)) {
        path.remove_prefix(dataVolume.size());
    }
    return path.empty() ? "/" : path;
}

/// Takes the first component off a path, and the slash before it.
std::string_view nextName(std::string_view& path) {
    if (path.front() == '/') path.remove_prefix(1);
    const std::string_view name = path.substr(0, path.find('/'));
    path.remove_prefix(name.size());
    return name;
}

class Choice {
public:
    explicit Choice(const KeptWalk& walk)
        : walk_(walk), read_(walk.folders.size()), whole_(walk.folders.size()) {
        read_[0] = true;  // that it is still there and still the same is seen there
        for (std::uint32_t index = 0; index < walk.folders.size(); ++index) {
            const KeptFolder& folder = walk.folders[index];
            if (folder.facts.state == FolderState::unreadable) {
                readWhole(index);  // it may be readable by now
            } else if (folder.isReadAgain) {
                read_[index] = true;
            }
        }
    }

    /// A folder that was there; nothing when it was not.
    void addUnsteady(const std::string& path) {
        const std::string_view home = walk_.folders[0].name;
        if (!isAtOrBelow(path, home)) return;
        std::uint32_t folder = 0;
        std::string_view rest = std::string_view(path).substr(home == "/" ? 0 : home.size());
        while (!rest.empty() && folder != KeptFolder::none) {
            const std::string_view name = nextName(rest);
            if (!name.empty()) folder = walk_.child(folder, name);
        }
        if (folder != KeptFolder::none) readWhole(folder);
    }

    void add(const FolderChange& change) {
        const std::string_view home = walk_.folders[0].name;
        const std::string_view path = pathOfChange(change.path, home);
        if (!isAtOrBelow(path, home)) {
            isDoubtful_ |= change.withAllBelow && isAtOrBelow(home, path);
            return;
        }
        std::uint32_t folder = 0;
        std::string_view rest = path.substr(home == "/" ? 0 : home.size());
        while (!rest.empty()) {
            const std::string_view name = nextName(rest);
            if (name.empty()) continue;
            // What lies below a folder that is left out is no part of the walk.
            if (!walk_.folders[folder].wasEntered()) return;
            const std::uint32_t next = walk_.child(folder, name);
            if (next == KeptFolder::none) return addUnknown(folder, name);
            folder = next;
        }
        change.withAllBelow ? readWhole(folder) : readAround(folder);
    }

    std::optional<Readings> result() {
        if (isDoubtful_ || whole_[0]) return std::nullopt;
        Readings readings;
        readings.canStay.resize(walk_.folders.size());
        std::vector<bool> isCovered(walk_.folders.size());
        for (std::uint32_t index = 0; index < walk_.folders.size(); ++index) {
            const KeptFolder& folder = walk_.folders[index];
            isCovered[index] =
                whole_[index] || (folder.parent != KeptFolder::none && isCovered[folder.parent]);
            if (isCovered[index] || !folder.wasEntered()) continue;
            readings.canStay[index] = true;
            if (read_[index]) readings.folders.push_back(index);
        }
        const std::size_t most = std::max(alwaysAllowed, walk_.folders.size() / 2);
        if (readings.folders.size() > most) return std::nullopt;
        return readings;
    }

private:
    /// A folder that is new by now, or gone again, or written otherwise than it is stored.
    void addUnknown(std::uint32_t folder, std::string_view name) {
        readAround(folder);
        const KeptFolder& above = walk_.folders[folder];
        folded_ += above.children;
        if (folded_ > mostFolded) {
            isDoubtful_ = true;
            return;
        }
        const std::string wanted = foldedText(name);
        for (std::uint32_t place = 0; place < above.children; ++place) {
            const std::uint32_t child = above.firstChild + place;
            if (foldedText(walk_.folders[child].name) == wanted) readWhole(child);
        }
    }

    void readAround(std::uint32_t folder) {
        const KeptFolder& told = walk_.folders[folder];
        read_[folder] = true;
        if (told.parent != KeptFolder::none) read_[told.parent] = true;
        for (std::uint32_t place = 0; place < told.children; ++place)
            read_[told.firstChild + place] = true;
    }

    /// With all below: the folder above finds it, and it is walked anew from there.
    void readWhole(std::uint32_t folder) {
        whole_[folder] = true;
        const std::uint32_t parent = walk_.folders[folder].parent;
        if (parent != KeptFolder::none) read_[parent] = true;
    }

    const KeptWalk& walk_;
    std::vector<bool> read_;
    std::vector<bool> whole_;
    std::size_t folded_ = 0;
    bool isDoubtful_ = false;
};

}  // namespace

std::optional<Readings> chooseReadings(const KeptWalk& walk,
                                       const std::vector<FolderChange>& changes,
                                       const std::vector<std::string>& unsteady) {
    Choice choice(walk);
    for (const FolderChange& change : changes)
        choice.add(change);
    for (const std::string& path : unsteady)
        choice.addUnsteady(path);
    return choice.result();
}

}  // namespace velto
