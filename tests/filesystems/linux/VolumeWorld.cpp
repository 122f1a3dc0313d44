#include "filesystems/linux/VolumeWorld.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "support/extended_attributes.h"
#include "support/linux/private_mounts.h"
#include "support/stored_path.h"
#include "support/tree_text.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

/// In memory where the machine has such a volume: what lies beside the tested one costs nothing.
std::string fastFolder() {
    return access("/dev/shm", W_OK) == 0 ? "/dev/shm" : fs::temp_directory_path().string();
}

void writeTo(const std::string& path, const std::string& content) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
    const timespec times[2] = {{1'500'000'000, 0}, {1'600'000'000, 0}};
    EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
}

void removeTree(const std::string& path) {
    PosixFileManager files;
    files.removeAll(*files.openFolder(path.substr(0, path.rfind('/')), FolderPath::withoutLinks),
                    path.substr(path.rfind('/') + 1));
}

}  // namespace

VolumeWorld::VolumeWorld(const VolumeKind& volumeKind, Placed placed)
    : kind(volumeKind),
      tellsCaseApart(volumeKind.tellsCaseApart || placed == Placed::trash),
      base_(fastFolder()) {
    home = placed == Placed::everything ? base_.path("volume/home") : base_.path("home");
    prefix = placed == Placed::diskInHome ? "disk/" : "";
    volume_ = base_.folder(placed == Placed::diskInHome ? "home/disk" : "volume");
    layout = HomeLayout::macOS(home);
    if (placed != Placed::trash) return;
    layout.applicationSupport = volume_;
    layout.dataFolder = volume_ + "/Velto";
    layout.trashFolder = volume_ + "/Velto/Trash";
}

std::string VolumeWorld::begin() {
    const std::string scratch = base_.folder("scratch");
    if (!mountMemory(scratch)) return "this user may not mount anything";
    const std::string problem = mountVolume(kind, volume_, scratch);
    if (problem.empty()) beginMounted();
    return problem;
}

void VolumeWorld::beginMounted() { fs::create_directories(path("Library")); }

void VolumeWorld::fill() const {
    const int file = open(filler().c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    off_t size = 0;
    for (off_t piece = 64 * 1024 * 1024; piece >= 4096;) {
        if (fallocate(file, 0, size, piece) == 0) {
            size += piece;
        } else {
            piece /= 2;
        }
    }
    close(file);
    EXPECT_GT(size, 0);
}

void VolumeWorld::makeRoom() const { fs::remove(filler()); }

void VolumeWorld::keep(const std::string& name) { kept_[name] = textOf(path(name)); }

void VolumeWorld::keepFolder(const std::string& name) {
    writeTo(path(name + "/notes.txt"), "some notes");
    writeTo(path(name + "/empty"), "");
    writeTo(path(name + "/deep/er/large"), std::string(70'000, 'x'));
    fs::create_directories(path(name + "/nothing in it"));
    if (kind.keepsAnyName) writeTo(path(name + "/line\nbreak \"quoted\" \\ back"), "odd");
    if (kind.keepsHoles) {
        writeTo(path(name + "/sparse"), "begin");
        fs::resize_file(path(name + "/sparse"), 300'000);
    }
    if (kind.keepsLinks) {
        fs::create_symlink("/etc/hosts", path(name + "/link out"));
        fs::create_symlink("nowhere/at all", path(name + "/deep/dangling"));
        fs::create_hard_link(path(name + "/notes.txt"), path(name + "/notes again.txt"));
    }
    if (kind.keepsAttributes) {
        setExtendedAttribute(path(name + "/notes.txt"), "user.note", "kept");
        setExtendedAttribute(path(name + "/deep"), "user.note", "of a folder");
    }
    if (kind.keepsModes) {
        chmod(path(name + "/empty").c_str(), 0400);
        chmod(path(name + "/deep/er/large").c_str(), 0751);
        chmod(path(name + "/deep").c_str(), 0555);
    }
    keep(name);
}

void VolumeWorld::keepEverything() {
    for (const char* name : {"Documents", "Downloads", "Library/Caches", "Pictures"})
        removeTree(path(name));
    kept_.clear();
    const auto file = [&](const std::string& name, const std::string& content) {
        writeTo(path(name), content);
        keep(name);
    };
    file("Documents/report.pdf", std::string(200'000, 'r'));
    file("Documents/empty", "");
    file("Documents/año nuevo.txt", "año");
    file("Downloads/no extension", "some");
    if (tellsCaseApart) {
        file("Downloads/name", "small letters");
        file("Downloads/Name", "a capital");
        file("Downloads/NAME", "capitals");
    }
    if (kind.keepsLinks) {
        writeTo(path("Downloads/twin"), "two names");
        fs::create_hard_link(path("Downloads/twin"), path("Documents/twin"));
        keep("Downloads/twin");
        fs::create_hard_link(path("Downloads/twin"), home + "/" + prefix + "Pictures twin");
        fs::create_directories(path("Pictures"));
        fs::rename(home + "/" + prefix + "Pictures twin", path("Pictures/twin"));
        keep("Documents/twin");
    }
    keepFolder("Library/Caches/com.example.app");
    writeTo(path("Pictures/kept.jpg"), "nobody touches it");
    writeTo(path("Downloads/kept too"), "nor this");
    bystanders_ = textOf(path("Pictures")) + textOf(path("Downloads/kept too"));
}

std::string VolumeWorld::textOf(const std::string& place) const {
    std::string text = treeText(place);
    if (text.empty() || !kind.keepsAttributes) return text;
    std::set<std::string> paths{place};
    if (fs::is_directory(fs::symlink_status(place))) {
        for (const auto& entry : fs::recursive_directory_iterator(place))
            paths.insert(entry.path());
    }
    for (const std::string& path : paths) {
        for (const auto& [name, value] : extendedAttributes(path)) {
            if (name.starts_with("user.")) {
                text += path.substr(place.size()) + " " + name + "=" + value + "\n";
            }
        }
    }
    return text;
}

std::vector<std::string> VolumeWorld::keptPaths() const {
    std::vector<std::string> paths;
    for (const auto& [name, text] : kept_)
        paths.push_back(path(name));
    return paths;
}

std::set<std::string> VolumeWorld::keptNames() const {
    std::set<std::string> names;
    for (const auto& [name, text] : kept_)
        names.insert(name);
    return names;
}

VolumeWorld::Whereabouts VolumeWorld::prove(const std::set<std::string>& mayBeGone) const {
    TrashUser fresh(layout, clock);
    const std::vector<TrashItem> items = fresh.service.items();
    Whereabouts found;
    std::set<std::string> stored;
    for (const auto& [name, text] : kept_) {
        const std::string here = textOf(path(name));
        if (!here.empty()) {
            EXPECT_EQ(here, text) << name << " is not whole in its place";
            found.home.insert(name);
        }
        for (const TrashItem& item : items) {
            if (item.originalPath != path(name)) continue;
            const std::string place = storedPath(layout.trashFolder, item);
            EXPECT_FALSE(place.empty()) << name << " is listed but not in the trash";
            if (place.empty()) continue;
            EXPECT_EQ(textOf(place), text) << name << " is not whole in the trash";
            EXPECT_TRUE(found.trash.insert(name).second) << name << " is twice in the trash";
            stored.insert(item.opID + "/" + fs::path(place).filename().string());
        }
        const bool isHere = found.home.contains(name);
        const bool isInTrash = found.trash.contains(name);
        EXPECT_FALSE(isHere && isInTrash && !allowsSurplus) << name << " is in both places";
        if (isHere || isInTrash) continue;
        EXPECT_TRUE(mayBeGone.contains(name)) << name << " is lost";
        found.gone.insert(name);
    }
    EXPECT_EQ(items.size(), found.trash.size()) << "the trash lists something else";
    EXPECT_EQ(textOf(path("Pictures")) + textOf(path("Downloads/kept too")), bystanders_);
    expectNothingLeftOver(stored);
    return found;
}

void VolumeWorld::expectNothingLeftOver(const std::set<std::string>& stored) const {
    const auto isAtOrIn = [](const std::string& leaf, const std::string& place) {
        return leaf == place || leaf.starts_with(place + "/");
    };
    for (const std::string& leaf : leavesBelow(home)) {
        bool isKnown = leaf.empty() || leaf.back() == '/' || leaf.starts_with("disk/lost+found") ||
                       (home + "/" + leaf).starts_with(layout.dataFolder + "/") ||
                       isAtOrIn(leaf, prefix + "Pictures") ||
                       leaf == prefix + "Downloads/kept too" || home + "/" + leaf == filler();
        for (const auto& [name, text] : kept_)
            isKnown = isKnown || isAtOrIn(leaf, prefix + name);
        EXPECT_TRUE(isKnown) << leaf << " was left in the home";
    }
    for (const std::string& leaf : leavesBelow(layout.trashFolder)) {
        // What a killed save has left goes at the next start.
        bool isKnown = leaf.empty() || leaf == "manifest.json" || leaf.starts_with(".velto-");
        isKnown = isKnown || (allowsSurplus && leaf.back() == '/');
        for (const std::string& place : stored)
            isKnown = isKnown || isAtOrIn(leaf, place);
        EXPECT_TRUE(isKnown) << leaf << " was left in the trash";
    }
}

}  // namespace velto
