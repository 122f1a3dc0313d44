#include "uninstall/InstalledApps.h"

#include <algorithm>
#include <unordered_set>

#include "platform/parallel.h"
#include "platform/values/text.h"
#include "uninstall/ProcessOwners.h"
#include "uninstall/bundle_information.h"
#include "uninstall/desktop_applications.h"
#include "uninstall/disk_usage.h"
#include "uninstall/words.h"

namespace velto {
namespace {

constexpr std::string_view bundleExtension = ".app";

bool isBundleName(std::string_view name) {
    return name.size() > bundleExtension.size() && name.ends_with(bundleExtension);
}

std::unordered_set<std::string> runningIdentifiers(RunningApplications& running) {
    std::unordered_set<std::string> identifiers;
    for (RunningApplication& application : running.list()) {
        if (!application.bundleIdentifier.empty()) {
            identifiers.insert(std::move(application.bundleIdentifier));
        }
    }
    return identifiers;
}

/// In the user's own order. What is compared over and over is moved only once.
std::vector<AppEntry> byName(std::vector<AppEntry> entries, const Locale& locale) {
    std::vector<AppEntry*> order;
    order.reserve(entries.size());
    for (AppEntry& entry : entries)
        order.push_back(&entry);
    std::ranges::stable_sort(order, [&](const AppEntry* left, const AppEntry* right) {
        return locale.compare(left->name, right->name) < 0;
    });
    std::vector<AppEntry> sorted;
    sorted.reserve(entries.size());
    for (AppEntry* entry : order)
        sorted.push_back(std::move(*entry));
    return sorted;
}

}  // namespace

std::vector<AppEntry> InstalledApps::listApps() {
    std::vector<AppEntry> found = platform_.layout.kind == HomeLayout::Kind::freedesktop
                                      ? listDesktopApplications()
                                      : listBundles();
    std::erase_if(found,
                  [&](const AppEntry& entry) { return entry.bid == platform_.bundleIdentifier; });
    recordRunning(found);
    return byName(std::move(found), *platform_.locale);
}

std::vector<AppEntry> InstalledApps::listBundles() const {
    const std::vector<std::string> paths = bundlePaths();
    std::vector<std::optional<AppEntry>> read(paths.size());
    std::unordered_set<std::string> running;
    LastUseEstimate estimate(platform_);
    std::once_flag isListed;
    const auto launches = usage_.launches();
    // What runs, and what the library holds, is looked up beside the reading of the bundles.
    forEachInParallel(1 + paths.size(), 0, [&](std::size_t index, std::size_t) {
        if (index == 0) {
            running = runningIdentifiers(*platform_.running);
            return;
        }
        std::optional<AppEntry>& entry = read[index - 1];
        entry = readApp(paths[index - 1]);
        if (!entry) return;
        std::call_once(isListed, [&] { estimate.listFolders(); });
        entry->last = lastUse(entry->bid, launches, estimate);
    });
    std::vector<AppEntry> found;
    found.reserve(read.size());
    for (std::optional<AppEntry>& entry : read) {
        if (!entry) continue;
        entry->running = running.contains(entry->bid);
        found.push_back(std::move(*entry));
    }
    return found;
}

std::vector<AppEntry> InstalledApps::listDesktopApplications() {
    std::vector<AppEntry> found;
    std::map<std::string, std::string> entries;
    std::vector<DesktopApplication> applications = desktopApplications(platform_);
    usage_.knowOwners(ProcessOwners(applications));
    for (DesktopApplication& application : applications) {
        entries[application.entry.path] = std::move(application.file);
        found.push_back(std::move(application.entry));
    }
    const auto launches = usage_.launches();
    const LastUseEstimate estimate(platform_);
    for (AppEntry& entry : found)
        entry.last = lastUse(entry.bid, launches, estimate);
    const std::lock_guard guard(lock_);
    entries_ = std::move(entries);
    return found;
}

std::vector<std::string> InstalledApps::bundlePaths() const {
    const HomeLayout& layout = platform_.layout;
    std::vector<std::string> paths;
    std::vector<std::string> folders{layout.systemApplications,
                                     layout.systemApplications + "/Utilities"};
    if (std::ranges::find(folders, layout.userApplications) == folders.end()) {
        folders.push_back(layout.userApplications);
    }
    for (const std::string& folder : folders) {
        try {
            for (const std::string& name : platform_.files->list(folder)) {
                if (!isBundleName(name)) continue;
                std::string path = folder;
                path.append("/").append(name);
                paths.push_back(std::move(path));
            }
        } catch (const FileError&) {
            // A folder that is not there, or that cannot be listed, has no applications to offer.
        }
    }
    return paths;
}

/// One that was never seen is taken to be used when its files last changed.
double InstalledApps::lastUse(const std::string& bundleID,
                              const std::map<std::string, double>& launches,
                              const LastUseEstimate& estimate) {
    const auto seen = launches.find(bundleID);
    return seen != launches.end() ? seen->second : estimate.of(bundleID).value_or(0);
}

void InstalledApps::recordRunning(std::vector<AppEntry>& entries) {
    const auto launches = usage_.launches();
    for (AppEntry& entry : entries) {
        if (!entry.running || launches.contains(entry.bid)) continue;
        entry.last = platform_.clock->now();
        usage_.record(entry.bid, entry.last);
    }
}

std::optional<AppEntry> InstalledApps::readApp(const std::string& path) const {
    if (platform_.layout.kind == HomeLayout::Kind::freedesktop) {
        for (DesktopApplication& application : desktopApplications(platform_)) {
            if (application.entry.path != path) continue;
            const std::lock_guard guard(lock_);
            entries_[path] = application.file;
            return std::move(application.entry);
        }
        return std::nullopt;
    }
    const auto information = readBundleInformation(*platform_.files, *platform_.contents, path);
    if (!information || information->identifier.value_or("").empty()) return std::nullopt;
    std::string fileName(lastPathComponent(path));
    if (isBundleName(fileName)) fileName.resize(fileName.size() - bundleExtension.size());
    const BundleInformation& texts = *information;
    const auto first = [](const std::optional<std::string>& one,
                          const std::optional<std::string>& other,
                          const std::string& last) { return one ? *one : other.value_or(last); };
    AppEntry entry;
    entry.bid = *texts.identifier;
    entry.name = first(texts.displayName, texts.name, fileName);
    entry.version = first(texts.shortVersion, texts.version, "");
    entry.exec = texts.executable.value_or(fileName);
    entry.path = path;
    entry.apple = entry.bid.starts_with("com.apple.") || path.starts_with("/System/");
    entry.store = platform_.files->exists(path + "/Contents/_MASReceipt/receipt");
    return entry;
}

bool InstalledApps::isRunning(const AppEntry& entry) const {
    if (platform_.layout.kind == HomeLayout::Kind::freedesktop) {
        const auto read = readApp(entry.path);
        return read && read->running;
    }
    return runningIdentifiers(*platform_.running).contains(entry.bid);
}

std::vector<RunningApplication> InstalledApps::processesOf(const AppEntry& entry) const {
    const bool isDesktop = platform_.layout.kind == HomeLayout::Kind::freedesktop;
    const ProcessOwners owners =
        isDesktop ? ProcessOwners(desktopApplications(platform_)) : ProcessOwners();
    const auto isInside = [&](const std::string& path) {
        return !entry.path.empty() && isAtOrBelow(path, entry.path);
    };
    std::vector<RunningApplication> found = platform_.running->list();
    std::erase_if(found, [&](const RunningApplication& process) {
        if (process.executable == platform_.executablePath) return true;  // this program
        if (!entry.bid.empty() && process.bundleIdentifier == entry.bid) return false;
        if (isInside(process.bundlePath)) return false;
        if (!isDesktop) return true;
        const ProcessOwners::Match match = owners.of(process, *platform_.files);
        const bool isIts =
            match.owner != nullptr && match.isCertain && match.owner->path == entry.path;
        return !isIts && !isInside(process.executable);
    });
    return found;
}

std::int64_t InstalledApps::sizeOf(const std::string& path) const {
    return sizesOf({path}).front();
}

std::vector<std::int64_t> InstalledApps::sizesOf(const std::vector<std::string>& paths) const {
    return allocatedSizes(*platform_.files, *platform_.directories, paths);
}

std::optional<std::string> InstalledApps::iconDataURL(const std::string& path, int size) const {
    if (platform_.layout.kind == HomeLayout::Kind::macOS) {
        return platform_.icons->pngDataURL(path, size);
    }
    std::string file;
    {
        const std::lock_guard guard(lock_);
        const auto found = entries_.find(path);
        if (found != entries_.end()) file = found->second;
    }
    return file.empty() ? std::nullopt : platform_.icons->pngDataURL(file, size);
}

std::optional<std::string> InstalledApps::teamID(const std::string& path) const {
    if (!path.starts_with('/')) return std::nullopt;  // never an option of the tool
    const ToolResult result =
        platform_.tools->run("/usr/bin/codesign", {"-dv", "--verbose=4", path});
    if (!result.started || !isValidUtf8(result.standardError)) return std::nullopt;
    constexpr std::string_view mark = "TeamIdentifier=";
    for (std::string_view rest = result.standardError; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        if (!line.starts_with(mark)) continue;
        const std::string_view team = trimmed(line.substr(mark.size()));
        if (team.empty() || team == "not set") return std::nullopt;
        return std::string(team);
    }
    return std::nullopt;
}

}  // namespace velto
