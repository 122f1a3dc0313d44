#include "bridge/home_folders.h"

#include <algorithm>
#include <iterator>
#include <set>

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"
#include "uninstall/kept_places.h"

namespace velto {
namespace {

using Paths = std::vector<std::string>;

void append(Paths& paths, const Paths& more) {
    paths.insert(paths.end(), more.begin(), more.end());
}

/// Every folder that the layout names by its role.
Paths places(const HomeLayout& layout) {
    Paths paths{layout.home,        layout.pictures,      layout.movies,
                layout.music,       layout.downloads,     layout.documents,
                layout.desktop,     layout.caches,        layout.applicationSupport,
                layout.dataFolder,  layout.systemTrash,   layout.agentsFolder,
                layout.cloudDrive,  layout.cloudFolder,   layout.userApplications,
                layout.userLibrary, layout.configuration, layout.applicationState,
                layout.sandboxes,   layout.autostart,     layout.userFlatpaks};
    append(paths, layout.libraryRoots);
    append(paths, layout.applicationRoots);
    append(paths, layout.neverRemoved);
    append(paths, layout.neverRemovedBelow);
    for (const NamedLocation& location : layout.protectedLocations)
        paths.push_back(location.path);
    // A single cache may go, also one that the system guards.
    std::ranges::copy_if(layout.guardedPaths, std::back_inserter(paths),
                         [&](const auto& path) { return !isAtOrBelow(path, layout.caches); });
    return paths;
}

/// Passwords, mail and the like, which programs of a freedesktop home look for by name.
Paths keptByName(const HomeLayout& layout) {
    Paths paths;
    if (layout.kind != HomeLayout::Kind::freedesktop) return paths;
    for (const KeptPlace& place : keptPlaces()) {
        const std::string& base = layout.*place.base;
        const bool isOfOneBrowser = place.extent == KeptPlace::Extent::profile;
        if (base.empty() || base == layout.caches || isOfOneBrowser) continue;
        for (std::size_t at = 0; at < place.names.size();) {
            const std::size_t end = std::min(place.names.find('|', at), place.names.size());
            paths.push_back(base + "/" + std::string(place.names.substr(at, end - at)));
            at = end + 1;
        }
    }
    return paths;
}

bool isWalked(const std::string& path, const HomeLayout& layout) {
    return std::ranges::any_of(layout.walkRoots,
                               [&](const auto& root) { return isAtOrBelow(path, root); });
}

/// What a walk can meet, with the folders on the way to it.
Paths withFoldersAbove(const Paths& paths, const HomeLayout& layout) {
    std::set<std::string> all;
    for (const std::string& path : paths) {
        if (path.empty() || !isWalked(path, layout)) continue;
        for (std::string at = path; isWalked(at, layout); at = parentFolder(at))
            all.insert(at);
    }
    return {all.begin(), all.end()};
}

}  // namespace

HomeFolders homeFolders(const HomeLayout& layout) {
    HomeFolders folders;
    Paths kept = places(layout);
    append(kept, keptByName(layout));
    folders.kept = withFoldersAbove(kept, layout);

    const auto add = [&](const std::string& category, const std::string& path) {
        Paths& paths = folders.categories[category];
        const bool isKnown = std::ranges::find(paths, path) != paths.end();
        if (!path.empty() && !isKnown) paths.push_back(path);
    };
    add("fotos", layout.pictures);
    add("fotos", layout.movies);
    add("musica", layout.music);
    add("descargas", layout.downloads);
    add("docs", layout.documents);
    add("docs", layout.desktop);
    std::set<std::string> ofLibraries{std::string(layout.libraryDefault)};
    for (const LibraryRule& rule : layout.libraryRules)
        ofLibraries.emplace(rule.category);
    for (const std::string& category : ofLibraries) {
        for (const std::string& path : layout.libraryRoots)
            add(category, path);
    }
    for (const std::string& path : layout.applicationRoots)
        add("apps", path);
    std::erase_if(folders.categories, [](const auto& row) { return row.second.empty(); });
    return folders;
}

std::string events::homeFolders(const HomeFolders& folders) {
    auto categories = nlohmann::json::object();
    for (const auto& [category, paths] : folders.categories)
        categories[category] = pathTexts(paths);
    return call("onHomeFolders",
                literal({{"kept", pathTexts(folders.kept)}, {"categories", categories}}));
}

}  // namespace velto
