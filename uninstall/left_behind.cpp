#include "uninstall/left_behind.h"

#include <algorithm>
#include <array>
#include <optional>

#include <nlohmann/json.hpp>

#include "platform/values/path_text.h"
#include "platform/values/text.h"
#include "platform/values/units.h"
#include "uninstall/disk_usage.h"
#include "uninstall/figures.h"
#include "uninstall/known_data_folders.h"
#include "uninstall/removal_rules.h"
#include "uninstall/tool_names.h"

namespace velto {
namespace {

constexpr double longUnused = 30.0 * 24 * 60 * 60;  // seconds
constexpr std::size_t mostEntries = 20'000;         // of a folder that are looked at

// What an identifier begins with that names a domain; other names with full stops are no
// identifiers.
constexpr std::array<std::string_view, 59> domains{
    "ai", "app",    "ar",  "at",       "au",   "be",  "br",  "by",   "ca", "cc",   "ch", "cloud",
    "cn", "co",     "com", "cz",       "de",   "dev", "dk",  "edu",  "es", "eu",   "fi", "fm",
    "fr", "garden", "gg",  "gov",      "hu",   "im",  "in",  "info", "io", "it",   "jp", "land",
    "me", "moe",    "net", "nl",       "no",   "one", "org", "page", "pl", "pro",  "ru", "se",
    "sh", "site",   "so",  "software", "tech", "tv",  "ua",  "uk",   "us", "work", "xyz"};

// Whose names also those folders have that no application alone uses.
constexpr std::array<std::string_view, 12> shared{
    "org.gnome.",  "org.kde.",       "org.freedesktop.", "org.gtk.",
    "org.xfce.",   "org.mate.",      "org.cinnamon.",    "io.elementary.",
    "com.ubuntu.", "com.canonical.", "com.system76.",    "org.x."};

bool isIdentifier(std::string_view name) {
    return isFlatpakIdentifier(name) &&
           std::ranges::find(domains, name.substr(0, name.find('.'))) != domains.end();
}

bool isOfDesktop(std::string_view name) {
    return std::ranges::any_of(shared,
                               [&](std::string_view front) { return name.starts_with(front); });
}

/// The last change of the folder and of what lies directly in it.
double lastChange(const FileManager& files, const std::string& folder) {
    const auto attributes = files.attributes(folder);
    double last = attributes ? attributes->modified : 0;
    try {
        for (const std::string& name : files.list(folder)) {
            if (const auto inside = files.attributes(folder + "/" + name)) {
                last = std::max(last, inside->modified);
            }
        }
    } catch (const FileError&) {
        // What cannot be listed is not offered: see `isOffered`.
    }
    return last;
}

/// Finds them in one home.
class Search {
public:
    Search(const Platform& platform, const InstalledNames& installed)
        : platform_(platform), installed_(installed) {}

    std::vector<LeftBehind> all() {
        const HomeLayout& layout = platform_.layout;
        if (layout.kind != HomeLayout::Kind::freedesktop) return {};
        if (installed_.knowsFlatpaks()) inSandboxes(layout.sandboxes);
        if (installed_.knowsPrograms() && installed_.knowsFlatpaks()) {
            for (const std::string* folder : {&layout.configuration, &layout.applicationSupport,
                                              &layout.applicationState, &layout.caches}) {
                inSharedFolder(*folder);
            }
        }
        return std::move(found_);
    }

private:
    void inSandboxes(const std::string& folder) {
        for (const std::string& name : folders(folder)) {
            if (!isFlatpakIdentifier(name) || installed_.hasFlatpak(name)) continue;
            add(folder + "/" + name, name, leftBehindReason::flatpak);
        }
    }

    void inSharedFolder(const std::string& folder) {
        for (const std::string& name : folders(folder)) {
            const std::string path = folder + "/" + name;
            if (isIdentifier(name)) {
                if (isOfDesktop(name) || installed_.hasIdentifier(name)) continue;
                addUnused(path, name, leftBehindReason::identifier);
            } else if (const auto package = goneFrom(name)) {
                addUnused(path, *package, leftBehindReason::package);
            }
        }
    }

    /// The known package whose folder that is, when nothing of it is installed.
    std::optional<std::string> goneFrom(const std::string& folder) const {
        const auto known = std::ranges::find(knownDataFolders, folder, &KnownDataFolder::folder);
        if (known == knownDataFolders.end() || installed_.hasName(folder)) return std::nullopt;
        for (std::string_view rest = known->names; !rest.empty();) {
            const std::string_view name = rest.substr(0, rest.find(' '));
            rest.remove_prefix(std::min(rest.size(), name.size() + 1));
            if (installed_.hasName(name) || installed_.hasFlatpak(name)) return std::nullopt;
        }
        return std::string(known->names.substr(0, known->names.find(' ')));
    }

    /// Folders and no links to such, by name.
    std::vector<std::string> folders(const std::string& folder) const {
        std::vector<std::string> names;
        if (folder.empty() || !isAtOrBelow(folder, platform_.layout.home)) return names;
        try {
            names = platform_.files->list(folder);
        } catch (const FileError&) {
            return {};  // few have all of them
        }
        names.resize(std::min(names.size(), mostEntries));
        std::erase_if(names, [&](const std::string& name) {
            const auto attributes = platform_.files->attributes(folder + "/" + name);
            return !attributes || attributes->kind != FileKind::folder;
        });
        std::ranges::sort(names);
        return names;
    }

    void addUnused(const std::string& path, const std::string& identifier, const char* why) {
        const double unusedFor = platform_.clock->now() - lastChange(*platform_.files, path);
        if (unusedFor >= longUnused) add(path, identifier, why);
    }

    void add(const std::string& path, const std::string& identifier, const char* why) {
        if (!isOffered(path)) return;
        found_.push_back({.path = path,
                          .identifier = identifier,
                          .why = why,
                          .last = lastChange(*platform_.files, path)});
    }

    bool isOffered(const std::string& path) const {
        const HomeLayout& layout = platform_.layout;
        const bool isOwn =
            isAtOrBelow(layout.dataFolder, path) || isAtOrBelow(platform_.settingsFolder, path);
        if (isOwn || !isSafeToRemove(path, "", layout) || isProtectedPlace(path, layout)) {
            return false;
        }
        try {
            platform_.files->list(path);
            return true;
        } catch (const FileError&) {
            return false;
        }
    }

    const Platform& platform_;
    const InstalledNames& installed_;
    std::vector<LeftBehind> found_;
};

}  // namespace

std::vector<LeftBehind> leftBehind(const Platform& platform, const InstalledNames& installed) {
    std::vector<LeftBehind> found = Search(platform, installed).all();
    std::vector<std::string> paths;
    paths.reserve(found.size());
    for (const LeftBehind& item : found)
        paths.push_back(item.path);
    const auto sizes = allocatedSizes(*platform.files, *platform.directories, paths);
    for (std::size_t index = 0; index < found.size(); ++index)
        found[index].gb = roundedToThousandth(gigabytes(sizes[index]));
    std::ranges::stable_sort(found, std::ranges::greater(), &LeftBehind::gb);
    return found;
}

nlohmann::json toJson(const LeftBehind& item) {
    return {{"path", pathText(item.path)},
            {"identifier", item.identifier},
            {"why", item.why},
            {"gb", item.gb},
            {"last", item.last}};
}

}  // namespace velto
