#include "uninstall/Leftovers.h"

#include <unordered_set>

#include <nlohmann/json.hpp>

#include "platform/privacy_gate.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"
#include "platform/values/units.h"
#include "uninstall/desktop_leftovers.h"
#include "uninstall/figures.h"

namespace velto::Leftovers {
namespace {

constexpr int iconSize = 32;  // pixels

/// A verified leftover, or the application itself.
struct Item {
    std::string id;
    std::string name;
    Candidate what;
    double gb = 0;
};

nlohmann::json toJson(const Item& item) {
    return {{"id", item.id},
            {"name", pathText(item.name)},
            {"path", pathText(item.what.path)},
            {"gb", item.gb},
            {"conf", rawValue(item.what.conf)},
            {"admin", item.what.admin},
            {"nested", item.what.nested},
            {"cat", item.what.cat}};
}

/// A link that leads nowhere does not count: removing goes by what a path leads to.
bool exists(const FileManager& files, const std::string& path) {
    const auto attributes = files.attributes(path);
    if (!attributes) return false;
    if (attributes->kind != FileKind::symbolicLink) return true;
    try {
        files.resolved(path);
        return true;
    } catch (const FileError&) {
        return false;
    }
}

/// The roots of the search by name of a Mac's home, with their categories.
std::vector<std::pair<std::string, std::string>> searchRoots(const HomeLayout& home) {
    return {{home.userLibrary + "/Application Support", "support"},
            {home.userLibrary + "/Caches", "caches"},
            {home.userLibrary + "/Logs", "logs"}};
}

std::vector<Candidate> searched(const Platform& platform, const AppEntry& entry, const Gate& gate) {
    if (platform.layout.kind == HomeLayout::Kind::freedesktop) {
        return desktopFindings(platform, entry);
    }
    std::vector<Candidate> all;
    for (const auto& [root, cat] : searchRoots(platform.layout)) {
        const auto found = searchByName(*platform.files, *platform.locale, entry.name, {root}, cat,
                                        searchLimit, gate);
        all.insert(all.end(), found.begin(), found.end());
    }
    return all;
}

std::vector<Candidate> allCandidates(const Platform& platform, const AppEntry& entry,
                                     const Gate& gate) {
    auto candidates =
        buildCandidates(entry.bid, entry.name, entry.exec, entry.path, entry.team, platform.layout);
    const auto found = searched(platform, entry, gate);
    candidates.insert(candidates.end(), found.begin(), found.end());
    return candidates;
}

/// Where the size of an item lies. Where removing a link deletes what it leads to, unless the rules
/// keep that, it is there; else nothing but the link is meant, which takes up nothing.
std::string measuredPath(const Platform& platform, const ItemRemoval& removal,
                         const std::string& path) {
    const auto attributes = platform.files->attributes(path);
    if (!attributes || attributes->kind != FileKind::symbolicLink) return path;
    return removal.placeOf(path).value_or(path);
}

/// Each item by the place where its size lies; what stays closed keeps 0.
void measure(std::vector<Item>& items, const std::vector<std::string>& places,
             const InstalledApps& apps, const Gate& gate) {
    std::vector<Item*> open;
    std::vector<std::string> paths;
    for (std::size_t index = 0; index < items.size(); ++index) {
        if (gate && gate(places[index])) continue;
        open.push_back(&items[index]);
        paths.push_back(places[index]);
    }
    const auto sizes = apps.sizesOf(paths);
    for (std::size_t index = 0; index < open.size(); ++index) {
        open[index]->gb = roundedToThousandth(gigabytes(sizes[index]));
    }
}

/// Everything that exists, each path once, in the order of the candidates.
std::vector<Item> verifiedItems(const Platform& platform, const InstalledApps& apps,
                                const AppEntry& entry, const Gate& gate, const Progress& progress) {
    std::unordered_set<std::string> accepted{entry.path};
    std::vector<Item> items;
    std::vector<std::string> measured;
    const ItemRemoval removal(platform, apps);
    for (const Candidate& candidate : allCandidates(platform, entry, gate)) {
        for (Candidate& found : expand(*platform.files, candidate, expansionLimit, gate)) {
            if (accepted.contains(found.path) || !exists(*platform.files, found.path)) continue;
            accepted.insert(found.path);
            measured.push_back(measuredPath(platform, removal, found.path));
            const std::string name(lastPathComponent(found.path));
            items.push_back({.id = "un-" + std::to_string(items.size() + 1),
                             .name = name,
                             .what = std::move(found)});
            if (progress) progress(name);
        }
    }
    measure(items, measured, apps, gate);
    return items;
}

nlohmann::json groupsOf(const std::vector<Item>& items) {
    nlohmann::json groups = nlohmann::json::array();
    for (std::string_view category : categories) {
        nlohmann::json inGroup = nlohmann::json::array();
        for (const Item& item : items) {
            if (item.what.cat == category) inGroup.push_back(toJson(item));
        }
        if (!inGroup.empty()) groups.push_back({{"key", category}, {"items", std::move(inGroup)}});
    }
    return groups;
}

struct Totals {
    double total = 0, certain = 0, possible = 0;
    int adminCount = 0, possibleCount = 0;
};

Totals totalsOf(const std::vector<Item>& items) {
    Totals totals;
    for (const Item& item : items) {
        totals.total += item.gb;
        if (item.what.admin) {
            ++totals.adminCount;
        } else if (item.what.conf == Conf::certain) {
            totals.certain += item.gb;
        } else {
            totals.possible += item.gb;
            ++totals.possibleCount;
        }
    }
    return totals;
}

}  // namespace

std::string_view rawValue(Conf conf) { return conf == Conf::certain ? "certain" : "possible"; }

nlohmann::json analyze(const Platform& platform, const InstalledApps& apps, const AppEntry& entry,
                       bool hasAccess, const Progress& progress) {
    Gate gate;
    if (!hasAccess) {
        gate = [&layout = platform.layout](const std::string& path) {
            return isBehindPrivacyGate(layout, path);
        };
    }
    const double gb =
        roundedToThousandth(entry.gb > 0 ? entry.gb : gigabytes(apps.sizeOf(entry.path)));
    std::vector<Item> items{
        {.id = "un-app", .name = entry.name, .what = {.path = entry.path, .cat = "app"}, .gb = gb}};
    for (Item& item : verifiedItems(platform, apps, entry, gate, progress))
        items.push_back(std::move(item));
    const Totals totals = totalsOf(items);
    return {{"bid", entry.bid},
            {"name", entry.name},
            {"path", pathText(entry.path)},
            {"version", entry.version},
            {"icon", apps.iconDataURL(entry.path, iconSize).value_or("")},
            {"gb", gb},
            {"running", entry.running},
            {"team", entry.team},
            {"groups", groupsOf(items)},
            {"total", roundedToThousandth(totals.total)},
            {"certain", roundedToThousandth(totals.certain)},
            {"possible", roundedToThousandth(totals.possible)},
            {"adminCount", totals.adminCount},
            {"possibleCount", totals.possibleCount},
            {"count", items.size()}};
}

std::map<std::string, LinkTarget> linkTargets(const Platform& platform, const InstalledApps& apps,
                                              const nlohmann::json& analysis) {
    const ItemRemoval removal(platform, apps);
    const std::string application = pathBytes(analysis.at("path").get<std::string>());
    const auto isPart = [&](const std::string& path) {
        return platform.layout.kind == HomeLayout::Kind::freedesktop &&
               leadsInto(*platform.files, path, application);
    };
    std::map<std::string, LinkTarget> targets;
    for (const auto& group : analysis.at("groups")) {
        for (const auto& item : group.at("items")) {
            const std::string path = pathBytes(item.at("path").get<std::string>());
            if (isPart(path)) continue;
            if (auto target = removal.linkTarget(path)) targets.emplace(path, std::move(*target));
        }
    }
    return targets;
}

}  // namespace velto::Leftovers
