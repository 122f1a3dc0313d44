#include "uninstall/LastUseEstimate.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "platform/values/text.h"

namespace velto {
namespace {

// What an application touches when it is used: folder of the library, and what follows its
// identifier there.
constexpr std::array<std::pair<std::string_view, std::string_view>, 5> ownFiles{{
    {"/Preferences/", ".plist"},
    {"/Application Support/", ""},
    {"/Containers/", ""},
    {"/HTTPStorages/", ""},
    {"/Saved Application State/", ".savedState"},
}};

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char character) { return (character & 0x80) == 0; });
}

/// On a Mac's disk a name is found whatever its case.
std::string folded(std::string_view name) { return lowerCasedAscii(name); }

std::optional<std::unordered_set<std::string>> foldedNames(const FileManager& files,
                                                           const std::string& folder) {
    std::unordered_set<std::string> names;
    try {
        for (const std::string& name : files.list(folder))
            names.insert(folded(name));
    } catch (const FileError& error) {
        // One that must not be listed may still tell of a name that is known.
        if (error.code() != ENOENT) return std::nullopt;
    }
    return names;
}

/// Listing such a folder may raise the system's prompt; asking for one name in it does not.
bool isGuarded(const HomeLayout& layout, const std::string& place) {
    return std::ranges::any_of(layout.guardedPaths,
                               [&](const std::string& path) { return path + "/" == place; });
}

}  // namespace

LastUseEstimate::LastUseEstimate(const Platform& platform) : files_(*platform.files) {
    const HomeLayout& layout = platform.layout;
    if (layout.kind == HomeLayout::Kind::macOS) {
        for (const auto& [folder, suffix] : ownFiles) {
            const std::string place = layout.userLibrary + std::string(folder);
            places_.push_back({place, suffix, std::nullopt, !isGuarded(layout, place)});
        }
        return;
    }
    for (const std::string* folder :
         {&layout.configuration, &layout.caches, &layout.applicationSupport,
          &layout.applicationState, &layout.sandboxes}) {
        if (!folder->empty()) places_.push_back({*folder + "/", "", std::nullopt});
    }
}

void LastUseEstimate::listFolders() {
    for (Place& place : places_) {
        if (place.mayBeListed) place.names = foldedNames(files_, place.folder);
    }
}

std::optional<double> LastUseEstimate::of(const std::string& bundleID) const {
    if (bundleID.empty() || bundleID.find('/') != std::string::npos) return std::nullopt;
    std::optional<double> latest;
    for (const auto& [folder, suffix, names, mayBeListed] : places_) {
        const std::string name = bundleID + std::string(suffix);
        // Other letters than these may be spelled in more than one way.
        if (names && isAscii(name) && !names->contains(folded(name))) continue;
        const auto attributes = files_.attributes(folder + name);
        if (attributes) latest = std::max(latest.value_or(0), attributes->modified);
    }
    return latest;
}

}  // namespace velto
