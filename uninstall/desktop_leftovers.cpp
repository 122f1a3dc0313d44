#include "uninstall/desktop_leftovers.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <unordered_set>

#include "platform/values/text.h"
#include "uninstall/common_words.h"
#include "uninstall/kept_places.h"
#include "uninstall/words.h"

namespace velto::Leftovers {
namespace {

using Role = std::string HomeLayout::*;

struct PlaceRow {
    Role folder;
    std::string_view below;
    std::string_view suffix;
    std::string_view cat;
};

constexpr Role data = &HomeLayout::applicationSupport;

/// Looked at for the identifier, the name and the program's name.
constexpr auto namedPlaces = std::to_array<PlaceRow>({
    {&HomeLayout::configuration, "/", "", "prefs"},
    {&HomeLayout::caches, "/", "", "caches"},
    {data, "/", "", "support"},
    {&HomeLayout::applicationState, "/", "", "state"},
    {&HomeLayout::sandboxes, "/", "", "containers"},
    {&HomeLayout::autostart, "/", ".desktop", "agents"},
    {&HomeLayout::agentsFolder, "/", ".service", "agents"},
    {&HomeLayout::agentsFolder, "/", ".timer", "agents"},
    {data, "/applications/", ".desktop", "support"},
});

/// Looked at for the identifier alone, by which systemd and D-Bus know them.
constexpr auto registeredPlaces = std::to_array<PlaceRow>({
    {&HomeLayout::agentsFolder, "/", ".socket", "agents"},
    {&HomeLayout::agentsFolder, "/", ".path", "agents"},
    {data, "/dbus-1/services/", ".service", "agents"},
    {data, "/metainfo/", ".metainfo.xml", "support"},
    {data, "/metainfo/", ".appdata.xml", "support"},
    {data, "/appdata/", ".appdata.xml", "support"},
    {data, "/mime/packages/", ".xml", "support"},
});

constexpr auto pictures = std::to_array<std::string_view>({"png", "svg", "svgz", "xpm"});

std::vector<std::string> readableNames(const FileManager& files, const std::string& folder) {
    try {
        return files.list(folder);
    } catch (const FileError&) {
        return {};  // what cannot be read contributes nothing
    }
}

std::optional<FileKind> kindOf(const FileManager& files, const std::string& path) {
    const auto attributes = files.attributes(path);
    return attributes ? std::optional(attributes->kind) : std::nullopt;
}

bool isRealFolder(const FileManager& files, const std::string& path) {
    return kindOf(files, path) == FileKind::folder;
}

Conf confOf(const std::string& identifier) {
    return isOwnIdentifier(identifier) ? Conf::certain : Conf::possible;
}

/// A name or a program's name as a key; nothing for what says too little.
std::optional<std::string> wordKey(const std::string& text) {
    auto key = nameKey(text);
    return key && !key->starts_with('.') && !isCommonWord(*key) ? key : std::nullopt;
}

/// The Snap that an entry belongs to; its file is called by the Snap, a low line and the program.
std::optional<std::string> snapOf(const std::string& bid, const std::string& path,
                                  const HomeLayout& home) {
    const std::string folder = parentFolder(path);
    const auto isOfSnaps = [&](const NamedLocation& location) {
        return location.identifier == entryOrigin::snap && location.path == folder;
    };
    const std::size_t line = bid.rfind('_');
    if (line == std::string::npos || std::ranges::none_of(home.desktopEntries, isOfSnaps)) {
        return std::nullopt;
    }
    const std::string name = bid.substr(0, line);
    return isEntryName(name) && !name.starts_with('.') ? std::optional(name) : std::nullopt;
}

/// Candidates as they are found; nothing that is kept, and no profile for certain.
class Found {
public:
    Found(const HomeLayout& home, const std::string& identifier)
        : home_(home), identifier_(identifier) {}

    void add(std::string path, std::string_view cat, Conf conf) {
        if (isKept(path, home_, identifier_)) return;
        if (isProfile(path, home_)) conf = Conf::possible;
        candidates_.push_back({.path = std::move(path), .cat = std::string(cat), .conf = conf});
    }
    void add(std::span<const PlaceRow> rows, const std::string& key, Conf conf) {
        for (const PlaceRow& row : rows) {
            if ((home_.*row.folder).empty()) continue;  // a role that this home lacks
            add(home_.*row.folder + std::string(row.below) + key + std::string(row.suffix), row.cat,
                conf);
        }
    }
    std::vector<Candidate> take() { return std::move(candidates_); }

private:
    const HomeLayout& home_;
    const std::string& identifier_;
    std::vector<Candidate> candidates_;
};

/// True for "ID.png", "ID-symbolic.svg" and the like, and not for another identifier that begins
/// so.
bool isIconOf(std::string_view file, std::string_view identifier) {
    if (!file.starts_with(identifier)) return false;
    file.remove_prefix(identifier.size());
    if (file.starts_with("-symbolic")) file.remove_prefix(std::string_view("-symbolic").size());
    return file.starts_with('.') && std::ranges::find(pictures, file.substr(1)) != pictures.end();
}

/// Applications put their icons into the theme that all others fall back on, or beside the themes;
/// a theme of the user's choice keeps its own pictures, whatever they are called.
void findIcons(const FileManager& files, const HomeLayout& home, const std::string& identifier,
               Found& found) {
    if (!isEntryName(identifier) || home.applicationSupport.empty()) return;
    const std::string icons = home.applicationSupport + "/icons";
    const auto look = [&](const std::string& folder) {
        for (const std::string& name : readableNames(files, folder)) {
            if (isIconOf(name, identifier)) {
                found.add(folder + "/" + name, "support", confOf(identifier));
            }
        }
    };
    look(icons);
    const std::string theme = icons + "/hicolor";
    for (const std::string& size : readableNames(files, theme)) {
        for (const std::string& context : readableNames(files, theme + "/" + size))
            look(theme + "/" + size + "/" + context);
    }
}

/// Commands that lead into the application: they would lead nowhere without it.
void findLinks(const FileManager& files, const HomeLayout& home, const AppEntry& entry,
               Found& found) {
    for (const std::string& folder : home.applicationRoots) {
        for (const std::string& name : readableNames(files, folder)) {
            const std::string path = folder + "/" + name;
            if (leadsInto(files, path, entry.path)) found.add(path, "support", Conf::certain);
        }
    }
}

/// Folders named like the application among those that all applications share, and one level
/// deeper, where nothing is kept.
class NameSearch {
public:
    NameSearch(const Platform& platform, const AppEntry& entry)
        : files_(*platform.files), locale_(*platform.locale), home_(platform.layout) {
        for (const std::string& name : {entry.name, entry.exec, entry.bid}) {
            const std::string key = comparable(name, locale_);
            if (length(key) >= 4 && !isCommonWord(key) && !isCommonWord(name)) keys_.insert(key);
        }
    }

    void run(Found& found) const {
        if (keys_.empty()) return;
        for (const auto& [root, cat] :
             {std::pair(home_.applicationSupport, "support"), std::pair(home_.caches, "caches"),
              std::pair(home_.configuration, "prefs"),
              std::pair(home_.applicationState, "state")}) {
            if (root.empty()) continue;
            for (const std::string& name : readableNames(files_, root))
                look(root + "/" + name, name, cat, found);
        }
    }

private:
    bool isNamedLikeIt(const std::string& name) const {
        return keys_.contains(comparable(name, locale_));
    }
    void look(const std::string& path, const std::string& name, const char* cat,
              Found& found) const {
        if (!isRealFolder(files_, path)) return;
        if (isNamedLikeIt(name)) return found.add(path, cat, Conf::possible);
        // What lies in a shared folder goes by a rule of its own.
        const KeptMatch kept = keptPlaceOf(path, home_);
        if (kept.row != nullptr && kept.row->extent != KeptPlace::Extent::maker) return;
        for (const std::string& child : readableNames(files_, path)) {
            if (isNamedLikeIt(child)) found.add(path + "/" + child, cat, Conf::possible);
        }
    }

    const FileManager& files_;
    const Locale& locale_;
    const HomeLayout& home_;
    std::unordered_set<std::string> keys_;
};

}  // namespace

bool leadsInto(const FileManager& files, const std::string& path, const std::string& application) {
    if (application.empty() || application.ends_with(".desktop")) return false;
    if (kindOf(files, path) != FileKind::symbolicLink) return false;
    try {
        return isAtOrBelow(files.resolved(path), application);
    } catch (const FileError&) {
        return false;  // leads nowhere
    }
}

std::vector<Candidate> desktopCandidates(const std::string& bid, const std::string& name,
                                         const std::string& exec, const std::string& path,
                                         const HomeLayout& home) {
    Found found(home, bid);
    if (isEntryName(bid) && !bid.starts_with('.')) {
        if (confOf(bid) != Conf::certain && !home.applicationSupport.empty()) {
            // However common its name is: it is the entry by which the application is known.
            found.add(home.applicationSupport + "/applications/" + bid + ".desktop", "support",
                      Conf::certain);
        }
        found.add(namedPlaces, bid, confOf(bid));
        found.add(registeredPlaces, bid, confOf(bid));
    }
    if (const auto snap = snapOf(bid, path, home)) {
        found.add(home.home + "/snap/" + *snap, "containers", Conf::certain);
    }
    for (const std::string& text : {name, exec}) {
        if (const auto key = wordKey(text)) found.add(namedPlaces, *key, Conf::possible);
    }
    return found.take();
}

std::vector<Candidate> dotFolders(const AppEntry& entry, const HomeLayout& home) {
    Found found(home, entry.bid);
    const auto add = [&](const std::string& key, Conf conf) {
        found.add(home.home + "/." + key, "support", conf);
    };
    if (isOwnIdentifier(entry.bid)) add(entry.bid, Conf::certain);
    for (const std::string& text : {entry.name, entry.exec}) {
        const auto key = wordKey(text);
        if (!key) continue;
        add(*key, Conf::possible);
        const std::string small = lowerCasedAscii(*key);
        if (small != *key) add(small, Conf::possible);
    }
    return found.take();
}

std::vector<Candidate> desktopFindings(const Platform& platform, const AppEntry& entry) {
    const FileManager& files = *platform.files;
    const HomeLayout& home = platform.layout;
    Found found(home, entry.bid);
    for (const Candidate& folder : dotFolders(entry, home)) {
        const auto kind = kindOf(files, folder.path);
        if (kind == FileKind::folder || kind == FileKind::symbolicLink) {
            found.add(folder.path, folder.cat, folder.conf);
        }
    }
    findIcons(files, home, entry.bid, found);
    findLinks(files, home, entry, found);
    NameSearch(platform, entry).run(found);
    return found.take();
}

}  // namespace velto::Leftovers
