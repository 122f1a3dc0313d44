#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <string_view>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "platform/DesktopEntry.h"
#include "platform/values/text.h"

namespace velto {
namespace {

// More than any system has: names in a folder with its subfolders, these, and entries in all.
constexpr std::size_t mostNames = 20'000;
constexpr std::size_t mostFolders = 1'000;
constexpr std::size_t mostEntries = 5'000;

/// One folder of entries with all below it.
class EntryTree {
public:
    using Found = std::function<void(std::string id, std::string path)>;

    EntryTree(const FileManager& files, Found found) : files_(files), found_(std::move(found)) {}

    /// `prefix` is what ids begin with there.
    void walk(const std::string& folder, const std::string& prefix = {}) {
        if (visited_.size() == mostFolders) return;
        std::vector<std::string> names;
        try {
            if (!visited_.insert(files_.resolved(folder)).second) return;
            names = files_.list(folder);
        } catch (const FileError&) {
            return;  // most of the folders are there on few machines, and most names are files'
        }
        folders.push_back(folder);
        names.resize(std::min(names.size(), room_));
        room_ -= names.size();
        std::ranges::sort(names);  // whatever the disk's order
        for (const std::string& name : names) {
            if (name.ends_with(desktopEntryExtension)) {
                found_(prefix + withoutExtension(name), fmt::format("{}/{}", folder, name));
            } else {
                walk(fmt::format("{}/{}", folder, name), fmt::format("{}{}-", prefix, name));
            }
        }
    }

    std::vector<std::string> folders;  // that could be listed

private:
    static std::string withoutExtension(const std::string& name) {
        return name.substr(0, name.size() - desktopEntryExtension.size());
    }

    const FileManager& files_;
    Found found_;
    std::size_t room_ = mostNames;
    std::unordered_set<std::string> visited_;  // by their path without links
};

// Where the icons of all themes are looked for, and at what sizes.
constexpr std::array<std::string_view, 9> iconFolders{"/icons/hicolor/32x32/apps/",
                                                      "/icons/hicolor/48x48/apps/",
                                                      "/icons/hicolor/64x64/apps/",
                                                      "/icons/hicolor/128x128/apps/",
                                                      "/icons/hicolor/256x256/apps/",
                                                      "/icons/hicolor/512x512/apps/",
                                                      "/icons/hicolor/scalable/apps/",
                                                      "/icons/",
                                                      "/pixmaps/"};
constexpr std::array<std::string_view, 3> pictureExtensions{".png", ".svg", ".xpm"};

}  // namespace

std::vector<DesktopEntryFile> desktopEntryFiles(const FileManager& files,
                                                const std::vector<NamedLocation>& folders) {
    std::vector<DesktopEntryFile> found;
    std::unordered_set<std::string> seen;
    for (const NamedLocation& folder : folders) {
        EntryTree tree(files, [&](std::string id, std::string path) {
            if (found.size() == mostEntries || !seen.insert(id).second) return;
            found.push_back({std::move(id), folder.identifier, std::move(path)});
        });
        tree.walk(folder.path);
    }
    std::ranges::sort(
        found, {}, [](const DesktopEntryFile& file) { return std::pair(file.id.size(), file.id); });
    return found;
}

std::vector<std::string> desktopEntryFolders(const FileManager& files,
                                             const std::vector<NamedLocation>& folders) {
    std::vector<std::string> found;
    for (const NamedLocation& folder : folders) {
        EntryTree tree(files, [](const std::string&, const std::string&) {});
        tree.walk(folder.path);
        std::ranges::move(tree.folders, std::back_inserter(found));
    }
    return found;
}

std::string snapOfEntry(const DesktopEntryFile& file, const DesktopEntry& entry) {
    if (!entry.snap.empty() || file.origin != entryOrigin::snap) return entry.snap;
    // snapd calls it "<snap>_<command>"; an instance has a low line of its own, but also the key.
    return file.id.substr(0, file.id.find('_'));
}

std::string desktopIconFile(const FileManager& files, const std::vector<NamedLocation>& folders,
                            const std::string& icon) {
    if (icon.starts_with('/')) return icon;
    if (icon.empty() || icon.find('/') != std::string::npos) return {};
    for (const NamedLocation& location : folders) {
        const std::string data = parentFolder(location.path);
        for (std::string_view folder : iconFolders) {
            for (std::string_view picture : pictureExtensions) {
                std::string path = fmt::format("{}{}{}{}", data, folder, icon, picture);
                if (files.exists(path)) return path;
            }
        }
    }
    return {};
}

}  // namespace velto
