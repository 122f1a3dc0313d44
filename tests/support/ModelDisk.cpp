#include "support/ModelDisk.h"

#include <algorithm>
#include <cerrno>
#include <deque>
#include <iterator>
#include <utility>

namespace velto {
namespace {

constexpr std::size_t longestName = 255;
constexpr int mostLinks = 40;

int fail(int reason) {
    errno = reason;
    return -1;
}

bool refuse(int reason) {
    errno = reason;
    return false;
}

std::deque<std::string> componentsOf(const std::string& path) {
    std::deque<std::string> components;
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        if (end > start) components.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return components;
}

}  // namespace

void applyEntry(ModelImage& image, const ModelEntryChange& entry) {
    auto& entries = image.at(entry.folder).entries;
    if (entry.after == 0) {
        entries.erase(entry.name);
    } else {
        entries[entry.name] = entry.after;
    }
}

ModelDisk::ModelDisk(const ModelImage& image) : durable_(image), live_(image) {
    for (const ModelInode& inode : image.inodes)
        time_ = std::max(time_, inode.changed);
}

bool ModelDisk::allows(Number number, mode_t rights) const {
    return (live_.at(number).mode >> 6 & rights) == rights || refuse(EACCES);
}

bool ModelDisk::reach(Number start, const std::string& path, bool followsLast, Place& place) const {
    if (path.empty()) return refuse(ENOENT);
    Number current = path.front() == '/' ? ModelImage::root : start;
    auto rest = componentsOf(path);
    place = {.folder = current, .name = ".", .inode = current};
    for (int links = 0; !rest.empty();) {
        const std::string name = std::move(rest.front());
        rest.pop_front();
        if (current == 0) return refuse(ENOENT);
        if (!live_.at(current).isFolder()) return refuse(ENOTDIR);
        if (!allows(current, 1)) return false;
        if (name.size() > longestName) return refuse(ENAMETOOLONG);
        Number next = name == "." ? current : live_.child(current, name);
        if (name == "..") next = live_.at(current).parent;
        if (next != 0 && live_.at(next).isLink() && (followsLast || !rest.empty())) {
            if (++links > mostLinks) return refuse(ELOOP);
            const std::string& target = *live_.at(next).content;
            if (target.starts_with('/')) current = ModelImage::root;
            auto steps = componentsOf(target);
            std::ranges::move(rest, std::back_inserter(steps));
            rest = std::move(steps);
            place = {.folder = current, .name = ".", .inode = current};
            continue;
        }
        place = {.folder = current, .name = name, .inode = next};
        current = next;
    }
    return true;
}

bool ModelDisk::mayChange(const Place& place) const {
    if (live_.at(place.folder).links == 0) return refuse(ENOENT);  // a folder that was removed
    return allows(place.folder, 3);
}

int ModelDisk::make(const Place& place, mode_t mode, std::string content, Number& made) {
    if (place.inode != 0) return fail(EEXIST);
    if (!mayChange(place)) return -1;
    made = live_.inodes.size();
    ModelInode inode{.volume = live_.at(place.folder).volume,
                     .mode = mode,
                     .content = std::make_shared<const std::string>(std::move(content)),
                     .entries = {},
                     .parent = place.folder};
    inode.accessed = inode.modified = inode.changed = tick();
    apply({.kind = ModelChange::Kind::entries,
           .volume = inode.volume,
           .inode = made,
           .entries = {{place.folder, place.name, made}},
           .made = inode});
    return 0;
}

int ModelDisk::addName(const Place& from, const Place& to) {
    if (from.inode == 0) return fail(ENOENT);
    if (to.inode != 0) return fail(EEXIST);
    if (live_.at(from.inode).isFolder()) return fail(EPERM);
    if (live_.at(from.inode).volume != live_.at(to.folder).volume) return fail(EXDEV);
    if (!mayChange(to)) return -1;
    apply({.kind = ModelChange::Kind::entries,
           .volume = live_.at(from.inode).volume,
           .inode = from.inode,
           .entries = {{to.folder, to.name, from.inode}},
           .made = {}});
    return 0;
}

int ModelDisk::remove(const Place& place, bool isFolder) {
    if (place.inode == 0) return fail(ENOENT);
    if (place.name == "." || place.name == "..") return fail(EINVAL);
    if (!mayChange(place)) return -1;
    const ModelInode& inode = live_.at(place.inode);
    if (isFolder && !inode.isFolder()) return fail(ENOTDIR);
    if (!isFolder && inode.isFolder()) return fail(EISDIR);
    if (inode.volume != live_.at(place.folder).volume) return fail(EBUSY);
    if (isFolder && !inode.entries.empty()) return fail(ENOTEMPTY);
    apply({.kind = ModelChange::Kind::entries,
           .volume = inode.volume,
           .inode = place.inode,
           .entries = {{place.folder, place.name, 0}},
           .made = {}});
    return 0;
}

bool ModelDisk::wouldEnclose(Number folder, Number inner) const {
    for (Number current = inner; current != ModelImage::root; current = live_.at(current).parent) {
        if (current == folder) return true;
    }
    return false;
}

int ModelDisk::rename(const Place& from, const Place& to) {
    if (from.inode == 0) return fail(ENOENT);
    const ModelInode& moved = live_.at(from.inode);
    if (moved.volume != live_.at(from.folder).volume) return fail(EBUSY);
    if (moved.volume != live_.at(to.folder).volume) return fail(EXDEV);
    // Linux says this of a target that holds the source, whatever the two are.
    if (to.inode != 0 && to.inode != from.inode && wouldEnclose(to.inode, from.folder)) {
        return fail(ENOTEMPTY);
    }
    if (!mayChange(from) || !mayChange(to)) return -1;
    if (moved.isFolder() && wouldEnclose(from.inode, to.folder)) return fail(EINVAL);
    if (from.inode == to.inode) return 0;
    if (moved.isFolder() && from.folder != to.folder && !allows(from.inode, 2)) return -1;
    if (to.inode != 0) {
        const ModelInode& replaced = live_.at(to.inode);
        if (moved.isFolder() && !replaced.isFolder()) return fail(ENOTDIR);
        if (!moved.isFolder() && replaced.isFolder()) return fail(EISDIR);
        if (!replaced.entries.empty()) return fail(ENOTEMPTY);
    }
    apply({.kind = ModelChange::Kind::entries,
           .volume = moved.volume,
           .inode = from.inode,
           .entries = {{from.folder, from.name, 0}, {to.folder, to.name, from.inode}},
           .made = {},
           .replaced = to.inode});
    return 0;
}

void ModelDisk::setContent(Number file, std::string content) {
    apply({.kind = ModelChange::Kind::content,
           .volume = live_.at(file).volume,
           .inode = file,
           .entries = {},
           .made = {},
           .content = std::make_shared<const std::string>(std::move(content))});
}

void ModelDisk::setAttributes(Number number, mode_t mode, std::int64_t accessed,
                              std::int64_t modified) {
    ModelInode now;
    now.mode = (live_.at(number).mode & S_IFMT) | (mode & 07777);
    now.accessed = accessed;
    now.modified = modified;
    apply({.kind = ModelChange::Kind::attributes,
           .volume = live_.at(number).volume,
           .inode = number,
           .entries = {},
           .made = now});
}

void ModelDisk::sync(Number number, ModelChange::Kind kind) {
    apply({.kind = kind,
           .volume = live_.at(number).volume,
           .inode = number,
           .entries = {},
           .made = {}});
}

void ModelDisk::apply(ModelChange change) {
    using Kind = ModelChange::Kind;
    const std::int64_t now = tick();
    if (change.made.mode != 0 && change.kind == Kind::entries) live_.inodes.push_back(change.made);
    for (const ModelEntryChange& entry : change.entries) {
        const Number before = live_.child(entry.folder, entry.name);
        if (before != 0) --live_.at(before).links;
        applyEntry(live_, entry);
        if (entry.after != 0) {
            ++live_.at(entry.after).links;
            if (live_.at(entry.after).isFolder()) live_.at(entry.after).parent = entry.folder;
        }
        live_.at(entry.folder).modified = live_.at(entry.folder).changed = now;
    }
    ModelInode& inode = live_.at(change.inode);
    if (change.kind == Kind::content) {
        inode.content = change.content;
        inode.modified = now;
        change.made.modified = now;
    }
    if (change.kind == Kind::attributes) {
        inode.mode = change.made.mode;
        inode.accessed = change.made.accessed;
        inode.modified = change.made.modified;
    }
    if (change.kind != Kind::sync && change.kind != Kind::flush) inode.changed = now;
    log_.push_back(std::move(change));
}

void ModelDisk::mount(const std::string& folder) {
    const Number covered = live_.find(folder);
    ModelInode top = live_.at(covered);
    top.volume = volumes_++;
    top.entries.clear();
    top.parent = live_.at(covered).parent;
    live_.mounts[covered] = live_.inodes.size();
    live_.inodes.push_back(top);
    settle();
}

void ModelDisk::settle() {
    live_.repair();
    durable_ = live_;
    log_.clear();
}

std::string describe(const ModelChange& change) {
    static constexpr const char* kinds[] = {"entry", "attributes", "content", "sync", "flush"};
    std::string text = kinds[static_cast<int>(change.kind)];
    text += " #" + std::to_string(change.inode);
    for (const ModelEntryChange& entry : change.entries) {
        text += (entry.after == 0 ? " -" : " +") + std::to_string(entry.folder) + "/" + entry.name;
    }
    if (change.content) text += " " + std::to_string(change.content->size()) + " bytes";
    return text;
}

}  // namespace velto
