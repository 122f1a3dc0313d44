#include "maintenance/MaintenanceRules.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "cleaning/folder_size.h"
#include "cleaning/trash_refusal.h"
#include "platform/privacy_gate.h"
#include "platform/values/text.h"
#include "platform/values/units.h"

namespace velto {
namespace {

constexpr std::int64_t smallestTrashItem = 50'000'000;  // bytes
constexpr double longestInTrash = 30;                   // whole days
constexpr int oldDownloadDays = 365;

/// Appends what a rule finds. One that fails adds nothing and keeps no other from its work; then it
/// is false.
template <typename Element, typename FindAll>
bool append(std::vector<Element>& target, FindAll findAll) {
    try {
        std::ranges::move(findAll(), std::back_inserter(target));
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

std::string nameOf(const velto::Candidate& candidate) {
    return std::string(lastPathComponent(candidate.path));
}

}  // namespace

MaintenanceRules::MaintenanceRules(const Platform& platform, Mover mover, CleaningRules& cleaning,
                                   Limits limits)
    : platform_(platform),
      mover_(std::move(mover)),
      cleaning_(cleaning),
      limits_(std::move(limits)),
      systemTrash_(platform) {}

std::vector<MaintenanceRules::Candidate> MaintenanceRules::candidates(const Switches& switches) {
    std::vector<Candidate> candidates;
    for (Found& found : find(switches))
        candidates.push_back(std::move(found.candidate));
    return candidates;
}

std::vector<MaintenanceRules::Candidate> MaintenanceRules::run(const Switches& switches) {
    std::vector<Found> found = find(switches);
    const CacheJudge judge(platform_);  // measuring takes a while: who runs now?
    std::erase_if(found, [&](const Found& one) { return !isStillWanted(one, judge); });
    if (found.empty()) return {};
    std::vector<Candidate> moved;
    if (move(found)) {
        for (Found& one : found)
            moved.push_back(std::move(one.candidate));
        return moved;
    }
    for (Found& one : found) {
        if (isStillWanted(one, judge) && move({one})) moved.push_back(std::move(one.candidate));
    }
    return moved;
}

/// The first rule to offer a path wins.
std::vector<MaintenanceRules::Found> MaintenanceRules::find(const Switches& switches) {
    const auto isOn = [&](const std::string& id) {
        const auto rule = switches.find(id);
        return rule != switches.end() && rule->second;
    };
    const auto mayRead = [&](const std::string& folder) {
        return limits_.hasAccess || !isBehindPrivacyGate(platform_.layout, folder);
    };
    std::vector<Found> all;
    if (isOn("systemTrash") && mayRead(platform_.layout.systemTrash))
        append(all, [&] { return fromSystemTrash(); });
    if (isOn("oldDownloads") && mayRead(platform_.layout.downloads)) {
        append(all, [&] { return fromOldDownloads(); });
    }
    if (isOn("caches")) {
        const CacheJudge judge(platform_);
        append(all, [&] { return fromCaches("caches", judge); });
        append(all, [&] { return fromCaches("xcode", judge); });
    }
    hasLookedForDuplicates_ =
        isOn("duplicates") && limits_.hasAccess && append(all, [&] { return fromDuplicates(all); });

    std::unordered_set<std::string> seen;
    std::erase_if(all, [&](const Found& one) {
        return !seen.insert(one.candidate.path).second ||
               trashRefusal(platform_, one.candidate.path);
    });
    rulesByPath_.clear();
    for (const Found& one : all)
        rulesByPath_.emplace(one.candidate.path, one.rule());
    return all;
}

std::string_view MaintenanceRules::Found::rule() const {
    if (cache) return cachesRule;
    if (duplicate) return "duplicates";
    return isFromSystemTrash ? "systemTrash" : "oldDownloads";
}

std::vector<MaintenanceRules::Found> MaintenanceRules::fromSystemTrash() const {
    const double now = platform_.clock->now();
    std::vector<SystemTrash::Item> old = systemTrash_.items();
    std::erase_if(old, [&](const SystemTrash::Item& item) {
        const double days = std::trunc((now - item.since) / secondsPerDay);
        return days <= longestInTrash || isProtectedPath(item.path);
    });
    std::vector<std::string> paths;
    for (const SystemTrash::Item& item : old)
        paths.push_back(item.path);
    const auto folders = folderSizes(*platform_.directories, paths);

    std::vector<Found> found;
    for (std::size_t index = 0; index < old.size(); ++index) {
        std::optional<std::int64_t> size = folders[index];
        if (!size) {
            const auto attributes = platform_.files->attributes(old[index].path);
            if (!attributes || attributes->kind != FileKind::regular) continue;
            size = attributes->logicalSize;
        }
        if (*size < smallestTrashItem) continue;
        found.push_back({.candidate = {old[index].path, old[index].name, gigabytes(*size)},
                         .duplicate = std::nullopt,
                         .cache = std::nullopt,
                         .isFromSystemTrash = true});
    }
    return found;
}

std::vector<MaintenanceRules::Found> MaintenanceRules::fromOldDownloads() {
    std::vector<Found> found;
    for (const velto::Candidate& candidate : fromCleaning("oldDownloads")) {
        if (candidate.daysOld < oldDownloadDays) continue;
        found.push_back({.candidate = {candidate.path, nameOf(candidate), candidate.gb},
                         .duplicate = std::nullopt,
                         .cache = std::nullopt});
    }
    return found;
}

/// Nobody looks on: what may hold more than its program can make again stays, and so does what a
/// program works with at this moment.
std::vector<MaintenanceRules::Found> MaintenanceRules::fromCaches(std::string_view ruleID,
                                                                  const CacheJudge& judge) {
    std::vector<Found> found;
    for (const velto::Candidate& candidate : fromCleaning(ruleID)) {
        if (!judge.facts(candidate).isCertain()) continue;
        found.push_back({.candidate = {candidate.path, nameOf(candidate), candidate.gb},
                         .duplicate = std::nullopt,
                         .cache = candidate});
    }
    return found;
}

std::vector<velto::Candidate> MaintenanceRules::fromCleaning(std::string_view ruleID) {
    const auto rule = std::ranges::find(cleaning_.rules(), ruleID, &Rule::id);
    return rule == cleaning_.rules().end() ? std::vector<velto::Candidate>() : rule->discover();
}

std::vector<MaintenanceRules::Found> MaintenanceRules::fromDuplicates(
    const std::vector<Found>& leaving) const {
    // Another rule may take the very copy that would stay; then another one has to.
    std::vector<std::string> leavingPaths;
    for (const Found& one : leaving)
        leavingPaths.push_back(one.candidate.path);
    std::vector<Found> found;
    for (DuplicateCopy& copy : duplicateCopies(platform_, limits_.excluded, leavingPaths)) {
        const std::string path = copy.copy.path;
        const double gb = copy.gb;
        found.push_back({.candidate = {path, std::string(lastPathComponent(path)), gb},
                         .duplicate = std::move(copy),
                         .cache = std::nullopt});
    }
    return found;
}

/// Comparing takes a while: a copy that has changed since, or whose other copy has, is none. The
/// application of a cache may have been started meanwhile.
bool MaintenanceRules::isStillWanted(const Found& found, const CacheJudge& judge) const {
    if (found.cache && !judge.facts(*found.cache).isCertain()) return false;
    return !found.duplicate || (found.duplicate->copy.isUnchanged(*platform_.files) &&
                                found.duplicate->kept.isUnchanged(*platform_.files));
}

bool MaintenanceRules::move(const std::vector<Found>& found) {
    std::vector<std::string> paths;
    Sizes sizes;
    for (const Found& one : found) {
        paths.push_back(one.candidate.path);
        sizes[one.candidate.path] = one.candidate.gb;
    }
    try {
        mover_(paths, sizes);
    } catch (const std::exception&) {
        return false;  // one by one next, or this one stays where it is
    }
    for (const Found& one : found) {
        if (one.isFromSystemTrash) systemTrash_.forget(one.candidate.path);
    }
    return true;
}

}  // namespace velto
