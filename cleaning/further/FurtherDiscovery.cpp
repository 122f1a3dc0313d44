#include "cleaning/further/FurtherDiscovery.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "cleaning/RunningPrograms.h"
#include "cleaning/further/FurtherWalk.h"
#include "cleaning/further/rule_places.h"
#include "cleaning/trash_refusal.h"
#include "platform/privacy_gate.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr double secondsPerDay = 86400;

// What says that a project was used though no file that is walked has changed.
constexpr auto signsOfUse = std::to_array<std::string_view>(
    {".git/index", ".git/HEAD", ".git/FETCH_HEAD", ".git/logs/HEAD"});

int daysSince(double date, double now) {
    if (date <= 0) return 0;
    const double days = std::trunc((now - date) / secondsPerDay);
    return static_cast<int>(std::clamp(days, 0.0, 1e6));
}

/// The last change of anything in the item, or in the project around it.
double lastChange(const FurtherWalk::Found& found, const FurtherRule& rule,
                  const FileManager& files) {
    double last = std::max(found.newest, found.project);
    if (rule.names.empty()) return last;
    const std::string project = parentFolder(found.path);
    for (const std::string_view sign : signsOfUse) {
        if (const auto file = files.attributes(project + "/" + std::string(sign)))
            last = std::max(last, file->modified);
    }
    return last;
}

/// A program that the rule names, the application whose own folder the item lies in, or anything
/// that was started from inside it.
bool isInUse(const FurtherWalk::Found& found, const FurtherRule& rule, const HomeLayout& layout,
             const RunningPrograms& running) {
    const bool isNamed = std::ranges::any_of(
        rule.notRunning, [&](const std::string& name) { return running.has(name); });
    if (isNamed || running.runsInside(found.path)) return true;
    const std::string& sandboxes = layout.sandboxes;
    if (sandboxes.empty() || !found.path.starts_with(sandboxes + "/")) return false;
    const std::string_view below = std::string_view(found.path).substr(sandboxes.size() + 1);
    return running.has(below.substr(0, below.find('/')));
}

FurtherGroup& groupOf(std::vector<FurtherGroup>& groups, const FurtherRule& rule) {
    const auto group = std::ranges::find(groups, &rule, &FurtherGroup::rule);
    if (group != groups.end()) return *group;
    groups.push_back({.rule = &rule, .items = {}, .bytes = {}, .parts = {}});
    return groups.back();
}

}  // namespace

std::string_view word(FurtherItem::Reason reason) {
    switch (reason) {
        case FurtherItem::Reason::madeAgain:
            return "madeAgain";
        case FurtherItem::Reason::running:
            return "running";
        case FurtherItem::Reason::unread:
            return "unread";
        case FurtherItem::Reason::unknown:
            break;
    }
    return "unknown";
}

std::vector<FurtherGroup> FurtherDiscovery::discover(const CancellationFlag& cancelled) const {
    const Platform& platform = question_.platform;
    const auto& rules = question_.rules;
    FurtherWalk walk(platform, rules);
    for (const std::string& path : question_.excluded)
        walk.leaveOut(path);
    if (!question_.hasAccess && platform.layout.hasPrivacyGate) {
        for (const NamedLocation& location : platform.layout.protectedLocations)
            walk.leaveOut(location.path);
        for (const std::string& path : platform.layout.guardedPaths)
            walk.leaveOut(path);
    }
    std::vector<FurtherGroup> groups;
    for (std::size_t index = 0; index < rules.size(); ++index) {
        const FurtherRule& rule = rules[index];
        if (!rule.isFor(platform.layout.kind)) continue;
        if (rule.isExplained && !isThere(rule)) continue;
        if (rule.isExplained) groupOf(groups, rule);
        if (rule.isExplained && rule.measure != FurtherRule::Measure::files) continue;
        for (const std::string& path : placesOf(platform, rule, question_.hasAccess)) {
            if (mayLookInto(path)) walk.add(index, path);
        }
    }
    const RunningPrograms running(*platform.running);
    const double now = platform.clock->now();
    for (const FurtherWalk::Found& found : walk.run(cancelled)) {
        const FurtherRule& rule = rules[found.rule];
        if (rule.isExplained) {
            auto& bytes = groupOf(groups, rule).bytes;
            bytes = bytes.value_or(0) + found.bytes;
            continue;
        }
        if (!found.isWhole || found.bytes < question_.smallest) continue;
        const int days = daysSince(lastChange(found, rule, *platform.files), now);
        if (days < rule.idleDays || trashRefusal(platform, found.path)) continue;
        FurtherItem::Reason reason =
            rule.isCertain ? FurtherItem::Reason::madeAgain : FurtherItem::Reason::unknown;
        if (!found.isRead) reason = FurtherItem::Reason::unread;
        if (isInUse(found, rule, platform.layout, running)) reason = FurtherItem::Reason::running;
        groupOf(groups, rule)
            .items.push_back({.path = found.path,
                              .bytes = found.bytes,
                              .linked = found.linked,
                              .days = days,
                              .reason = reason});
    }
    for (FurtherGroup& group : groups) {
        if (group.rule->measure == FurtherRule::Measure::files)
            group.bytes = group.bytes.value_or(0) + bytesOutsideHome(*group.rule);
        std::ranges::sort(group.items, [](const FurtherItem& left, const FurtherItem& right) {
            return left.bytes != right.bytes ? left.bytes > right.bytes : left.path < right.path;
        });
    }
    std::erase_if(groups, [&](const FurtherGroup& group) {
        return group.rule->measure == FurtherRule::Measure::files &&
               group.bytes < question_.smallest;
    });
    std::ranges::sort(groups, {}, &FurtherGroup::rule);
    return groups;
}

void FurtherDiscovery::askTools(std::vector<FurtherGroup>& groups) const {
    std::erase_if(groups, [&](FurtherGroup& group) {
        const auto measure =
            measureByTool(question_.platform, group.rule->measure, question_.tools);
        if (!measure) return false;
        group.bytes = measure->bytes;
        group.parts = measure->parts;
        return measure->bytes == 0;
    });
}

/// A guarded folder is not even named in the walk: listing what is above it would be enough to
/// raise the system's prompt for some.
bool FurtherDiscovery::mayLookInto(const std::string& path) const {
    return question_.hasAccess || !isBehindPrivacyGate(question_.platform.layout, path);
}

bool FurtherDiscovery::isThere(const FurtherRule& rule) const {
    return std::ranges::any_of(rule.where, [&](const std::string& place) {
        return std::ranges::any_of(resolvedPlaces(question_.platform, place, question_.hasAccess),
                                   [&](const std::string& path) {
                                       return mayLookInto(path) &&
                                              question_.platform.files->exists(path);
                                   });
    });
}

/// The files directly in the rule's folders that no walk of the home reaches.
std::int64_t FurtherDiscovery::bytesOutsideHome(const FurtherRule& rule) const {
    const FileManager& files = *question_.platform.files;
    std::int64_t bytes = 0;
    for (const std::string& place : rule.where) {
        if (!place.starts_with('/')) continue;
        try {
            for (const std::string& name : files.list(place)) {
                if (const auto file = files.attributes(place + "/" + name))
                    bytes += file->allocatedSize;
            }
        } catch (const FileError&) {
            // Another user's: then it is not known how much there is.
        }
    }
    return bytes;
}

}  // namespace velto
