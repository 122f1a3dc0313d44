#include "cleaning/CleaningRules.h"

#include <algorithm>
#include <array>
#include <exception>
#include <limits>
#include <map>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "cleaning/folder_size.h"
#include "cleaning/known_caches.h"
#include "cleaning/trash_refusal.h"
#include "platform/privacy_gate.h"
#include "platform/values/text.h"
#include "platform/values/units.h"

namespace velto {
namespace {

// Limits in bytes: compared as whole numbers, so that the byte at the limit decides.
constexpr std::int64_t smallestCandidate = 50'000'000;
constexpr std::int64_t smallestDerivedData = 100'000'000;

constexpr int oldAfterDays = 366;  // a year counts as more than 365 days

// Caches that the system itself needs or guards. Anywhere in the name: they come with suffixes.
constexpr std::array<std::string_view, 5> systemCaches{{
    "com.apple.Safari",
    "com.apple.bird",
    "CloudKit",
    "com.apple.helpd",
    "com.apple.rtcreportingd",
}};

bool isSystemCache(std::string_view name) {
    return std::any_of(systemCaches.begin(), systemCaches.end(), [&](std::string_view cache) {
        return name.find(cache) != std::string_view::npos;
    });
}

/// The downloads folder lies behind the system's privacy gate.
bool readsDownloads(std::string_view ruleID) {
    return ruleID == "oldDownloads" || ruleID == "installers";
}

std::string inside(const std::string& folder, std::string_view name) {
    return folder + "/" + std::string(name);
}

void sortBySize(std::vector<Candidate>& candidates) {
    std::sort(candidates.begin(), candidates.end(),
              [](const Candidate& left, const Candidate& right) {
                  return left.gb != right.gb ? left.gb > right.gb : left.path < right.path;
              });
}

/// Nothing when the rule fails: no rule's trouble may take the others' candidates away.
std::vector<Candidate> candidatesOf(const Rule& rule) {
    try {
        return rule.discover();
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace

CleaningRules::CleaningRules(const Platform& platform, std::function<bool()> hasAccess)
    : platform_(platform), hasAccess_(std::move(hasAccess)) {}

const std::vector<Rule>& CleaningRules::rules() {
    if (rules_.empty()) {
        rules_ = {
            {"caches", "Cachés de aplicaciones", [this] { return caches(); }},
            {"xcode", "Restos de Xcode", [this] { return xcode(); }},
            {"oldDownloads", "Descargas antiguas (> 1 año sin abrir)",
             [this] { return oldDownloads(); }},
            {"installers", "Instaladores ya usados (.dmg/.pkg)", [this] { return installers(); }},
        };
    }
    return rules_;
}

std::vector<Candidate> CleaningRules::discoverAll() {
    const bool access = hasAccess_();
    newest_.clear();
    std::map<std::string, Candidate> merged;
    for (const Rule& rule : rules()) {
        if (!access && readsDownloads(rule.id)) continue;
        for (const Candidate& candidate : candidatesOf(rule)) {
            if (trashRefusal(platform_, candidate.path)) continue;
            const auto [place, isNew] = merged.try_emplace(candidate.path, candidate);
            if (!isNew && candidate.gb > place->second.gb) place->second = candidate;
        }
    }
    std::vector<Candidate> candidates;
    candidates.reserve(merged.size());
    for (auto& [path, candidate] : merged)
        candidates.push_back(std::move(candidate));
    sortBySize(candidates);
    return candidates;
}

CleaningRules::Ages CleaningRules::agesInside(const std::vector<Candidate>& candidates) const {
    Ages ages;
    for (const Candidate& candidate : candidates) {
        const auto newest = newest_.find(candidate.path);
        if (newest == newest_.end()) continue;
        const int days = daysSince(newest->second);
        if (days < candidate.daysOld) ages[candidate.path] = days;
    }
    return ages;
}

std::vector<std::optional<std::int64_t>> CleaningRules::measured(
    const std::vector<std::string>& paths) {
    const auto measures = folderMeasures(*platform_.directories, paths);
    std::vector<std::optional<std::int64_t>> sizes(paths.size());
    for (std::size_t index = 0; index < paths.size(); ++index) {
        if (!measures[index]) continue;
        sizes[index] = measures[index]->bytes;
        newest_[paths[index]] = measures[index]->newest;
    }
    return sizes;
}

std::vector<Candidate> CleaningRules::caches() {
    std::vector<std::string> entries = names(platform_.layout.caches);
    std::erase_if(entries, isSystemCache);
    if (platform_.layout.kind == HomeLayout::Kind::freedesktop) {
        std::erase_if(entries, [](const std::string& name) {
            return knownCache(name) == KnownCache::neverTaken;
        });
    }
    const auto isGuarded = [this](const std::string& name) {
        return isBehindPrivacyGate(platform_.layout, inside(platform_.layout.caches, name));
    };
    if (std::ranges::any_of(entries, isGuarded) && !hasAccess_()) {
        std::erase_if(entries, isGuarded);
    }
    std::vector<std::string> paths;
    paths.reserve(entries.size());
    for (const std::string& name : entries)
        paths.push_back(inside(platform_.layout.caches, name));
    const auto sizes = measured(paths);

    std::vector<Candidate> candidates;
    for (std::size_t index = 0; index < paths.size(); ++index) {
        if (sizes[index].value_or(0) < smallestCandidate) continue;
        std::string shown = entries[index];
        std::replace(shown.begin(), shown.end(), '.', ' ');
        candidates.push_back({.ruleID = "caches",
                              .path = paths[index],
                              .gb = gigabytes(*sizes[index]),
                              .daysOld = daysSinceModified(paths[index]),
                              .label = fmt::format("Caché de {}.", shown)});
    }
    sortBySize(candidates);
    return candidates;
}

std::vector<Candidate> CleaningRules::xcode() {
    const HomeLayout& layout = platform_.layout;
    const bool isInstalled =
        std::any_of(layout.xcodeApplications.begin(), layout.xcodeApplications.end(),
                    [&](const std::string& path) { return platform_.files->exists(path); });
    if (!isInstalled) return {};

    // All that might be proposed; the sizes, measured together, decide.
    std::vector<Candidate> possible;
    if (isWithinReach(layout.xcodeDerivedData)) {
        possible.push_back({.ruleID = "xcode",
                            .path = layout.xcodeDerivedData,
                            .daysOld = daysSinceModified(layout.xcodeDerivedData),
                            .label = "Derived Data de Xcode."});
    }
    for (const std::string& name : names(layout.xcodeDeviceSupport)) {
        const std::string path = inside(layout.xcodeDeviceSupport, name);
        const int days = daysSinceModified(path);
        if (days < oldAfterDays) continue;
        possible.push_back({.ruleID = "xcode",
                            .path = path,
                            .daysOld = days,
                            .label = fmt::format("Device support {}.", name)});
    }
    std::vector<std::string> paths;
    paths.reserve(possible.size());
    for (const Candidate& candidate : possible)
        paths.push_back(candidate.path);
    const auto sizes = measured(paths);

    std::vector<Candidate> candidates;
    for (std::size_t index = 0; index < possible.size(); ++index) {
        const bool isDerivedData = possible[index].path == layout.xcodeDerivedData;
        const std::int64_t smallest = isDerivedData ? smallestDerivedData : 0;
        if (!sizes[index] || *sizes[index] < smallest) continue;
        possible[index].gb = gigabytes(*sizes[index]);
        candidates.push_back(std::move(possible[index]));
    }
    return candidates;
}

std::vector<Candidate> CleaningRules::oldDownloads() const {
    std::vector<Candidate> candidates;
    for (const Download& file : largeDownloads([](std::string_view) { return true; })) {
        if (file.daysUnused < oldAfterDays) continue;
        candidates.push_back({.ruleID = "oldDownloads",
                              .path = file.path,
                              .gb = gigabytes(file.bytes),
                              .daysOld = file.daysUnused,
                              .label = fmt::format("«{}», sin abrir más de un año.", file.name)});
    }
    sortBySize(candidates);
    return candidates;
}

/// Whatever their age, in spite of the rule's name: an installer can be downloaded again.
std::vector<Candidate> CleaningRules::installers() const {
    const auto& extensions = platform_.layout.installerExtensions;
    const auto isInstaller = [&](std::string_view name) {
        const std::string extension = lowerCaseExtension(name);
        return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
    };
    std::vector<Candidate> candidates;
    for (const Download& file : largeDownloads(isInstaller)) {
        candidates.push_back({.ruleID = "installers",
                              .path = file.path,
                              .gb = gigabytes(file.bytes),
                              .daysOld = file.daysUnused,
                              .label = fmt::format("Instalador «{}» ya usado.", file.name)});
    }
    sortBySize(candidates);
    return candidates;
}

/// The plain files of the downloads folder that are large enough to be proposed. Folders, packages
/// that are folders among them, and links are none, however much is in them or behind them.
std::vector<CleaningRules::Download> CleaningRules::largeDownloads(
    const std::function<bool(std::string_view)>& isWanted) const {
    std::vector<Download> found;
    for (const std::string& name : names(platform_.layout.downloads)) {
        if (!isWanted(name)) continue;
        const std::string path = inside(platform_.layout.downloads, name);
        const auto attributes = platform_.files->attributes(path);
        if (!attributes || attributes->kind != FileKind::regular) continue;
        if (attributes->logicalSize < smallestCandidate) continue;
        // A file system without access times says 0.
        const double lastUse =
            attributes->accessed > 0 ? attributes->accessed : attributes->modified;
        found.push_back({.name = name,
                         .path = path,
                         .bytes = attributes->logicalSize,
                         .daysUnused = daysSince(lastUse)});
    }
    return found;
}

/// The trash takes nothing through a link on the way, and nothing from outside the home; what it
/// would refuse is not even measured.
bool CleaningRules::isWithinReach(const std::string& path) const {
    return trashRefusal(platform_, path) != TrashError::Reason::outsideHome;
}

/// The names in a folder that can be proposed, sorted. A folder that cannot be listed has none.
std::vector<std::string> CleaningRules::names(const std::string& folder) const {
    if (folder.empty() || !isWithinReach(folder)) return {};
    std::vector<std::string> entries;
    try {
        entries = platform_.files->list(folder);
    } catch (const FileError&) {
        // A home without this folder, or one we may not read, has nothing to clean there.
        return {};
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

int CleaningRules::daysSinceModified(const std::string& path) const {
    const auto attributes = platform_.files->attributes(path);
    return attributes ? daysSince(attributes->modified) : 0;
}

int CleaningRules::daysSince(double date) const {
    const double days = (platform_.clock->now() - date) / secondsPerDay;
    constexpr double most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(days, 0.0, most));
}

}  // namespace velto
