#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "platform/DesktopEntry.h"
#include "platform/values/text.h"

namespace velto {
namespace {

// More than any system has: names in a folder with its subfolders, and entries in all of them.
constexpr std::size_t mostNames = 20'000;
constexpr std::size_t mostEntries = 5'000;

/// At most `room` of them, which shrinks by as many.
std::vector<std::string> namesIn(const FileManager& files, const std::string& folder,
                                 std::size_t& room) {
    try {
        auto names = files.list(folder);
        names.resize(std::min(names.size(), room));
        room -= names.size();
        return names;
    } catch (const FileError&) {
        return {};  // most of the folders are there on few machines
    }
}

std::string withoutExtension(const std::string& name) {
    return name.substr(0, name.size() - desktopEntryExtension.size());
}

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
    const auto add = [&](const std::string& id, const std::string& origin, std::string path) {
        if (found.size() == mostEntries || !seen.insert(id).second) return;
        found.push_back({id, origin, std::move(path)});
    };
    for (const auto& [origin, folder] : folders) {
        std::size_t room = mostNames;
        for (const std::string& name : namesIn(files, folder, room)) {
            const std::string path = fmt::format("{}/{}", folder, name);
            if (name.ends_with(desktopEntryExtension)) {
                add(withoutExtension(name), origin, path);
                continue;
            }
            for (const std::string& inner : namesIn(files, path, room)) {
                if (!inner.ends_with(desktopEntryExtension)) continue;
                add(fmt::format("{}-{}", name, withoutExtension(inner)), origin,
                    fmt::format("{}/{}", path, inner));
            }
        }
    }
    std::ranges::sort(
        found, {}, [](const DesktopEntryFile& file) { return std::pair(file.id.size(), file.id); });
    return found;
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
