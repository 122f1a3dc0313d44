#include "uninstall/AppUsage.h"

#include <memory>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/values/parse_json.h"
#include "platform/values/text.h"
#include "platform/values/write_json.h"
#include "platform/write_lightly.h"
#include "uninstall/desktop_applications.h"

namespace velto {
namespace {

constexpr const char* fileName = "/app-usage.json";
constexpr ReadLimit limit = ownFile(16 << 20);  // a line for each application ever seen
constexpr double pause = 5;                     // seconds between a use and its being saved

}  // namespace

AppUsage::AppUsage(Platform& platform, Write write)
    : platform_(platform), write_(std::move(write)) {
    if (!write_) {
        write_ = [&platform](const std::string& path, std::string_view content) {
            platform.files->writeAtomically(path, content);
        };
    }
    const auto stored = platform_.defaults->value(defaultsKey::recordUses);
    isRecording_ = stored != DefaultsValue(false);
    if (isRecording_) load();
}

AppUsage& AppUsage::shared() {
    // Lives for ever: work on the global queue may use it while the process ends, when the
    // destructors of static objects have run already.
    static AppUsage* const instance =
        std::make_unique<AppUsage>(processPlatform(), writeLightly).release();
    return *instance;
}

void AppUsage::start() {
    if (observing) return;
    observing = true;
    platform_.running->observe(
        [this](const RunningApplication& application) { recordIfInstalled(application); });
    if (platform_.layout.kind == HomeLayout::Kind::macOS) {
        recordRunning();
        return;
    }
    // Which program is which application stands in many small files, and what runs tells it when it
    // likes to: not on the main thread.
    platform_.dispatcher->global(QualityOfService::utility, [this] {
        learnOwners();
        recordRunning();
    });
}

void AppUsage::recordRunning() {
    for (const RunningApplication& application : platform_.running->list())
        recordIfInstalled(application);
}

void AppUsage::learnOwners() { knowOwners(ProcessOwners(desktopApplications(platform_))); }

void AppUsage::record(const std::string& bundleID, double time) {
    if (bundleID.empty() || bundleID == platform_.bundleIdentifier || !(time > 0)) return;
    if (!isValidUtf8(bundleID)) return;  // could not be written as JSON
    {
        const std::lock_guard guard(lock_);
        if (!isRecording_) return;
        double& known = launches_[bundleID];
        if (known >= time) return;
        known = time;
        isSaved_ = false;
        if (std::exchange(isAwaited_, true)) return;
    }
    saveLater();
}

std::map<std::string, double> AppUsage::launches() const {
    const std::lock_guard guard(lock_);
    return launches_;
}

bool AppUsage::isRecording() const {
    const std::lock_guard guard(lock_);
    return isRecording_;
}

void AppUsage::setRecording(bool on) {
    const std::lock_guard one(saving_);  // no save puts the file back afterwards
    platform_.defaults->setValue(defaultsKey::recordUses, on);
    {
        const std::lock_guard guard(lock_);
        isRecording_ = on;
        if (on) return;
        launches_.clear();
        isSaved_ = true;
    }
    platform_.files->removeAll(platform_.layout.dataFolder + fileName);
}

void AppUsage::forget() {
    const std::scoped_lock guard(saving_, lock_);  // no save puts the file back afterwards
    launches_.clear();
    isSaved_ = true;
}

void AppUsage::knowOwners(ProcessOwners owners) {
    const std::lock_guard guard(lock_);
    owners_ = std::move(owners);
}

std::optional<std::string> AppUsage::installedIdentifier(
    const RunningApplication& application) const {
    const HomeLayout& layout = platform_.layout;
    if (layout.kind == HomeLayout::Kind::freedesktop) {
        const std::lock_guard guard(lock_);
        const ProcessOwners::Match match = owners_.of(application);
        return match.owner == nullptr ? std::nullopt : std::optional(match.owner->bid);
    }
    const std::string& path = application.bundlePath;
    const bool isInstalled = path.starts_with(layout.systemApplications + "/") ||
                             path.starts_with(layout.userApplications + "/");
    if (!isInstalled || application.bundleIdentifier.empty()) return std::nullopt;
    return application.bundleIdentifier;
}

void AppUsage::recordIfInstalled(const RunningApplication& application) {
    if (const auto identifier = installedIdentifier(application)) {
        record(*identifier, platform_.clock->now());
    }
}

void AppUsage::load() {
    try {
        const auto json =
            parseJson(platform_.files->read(platform_.layout.dataFolder + fileName, limit));
        if (!json.is_object()) return;
        for (const auto& [bundleID, time] : json.items()) {
            if (time.is_number()) launches_[bundleID] = time.get<double>();
        }
    } catch (const FileError&) {
        // Nothing was seen yet.
    } catch (const nlohmann::json::exception&) {
        // Damaged: counts as empty, and the next save replaces it.
    }
}

/// People switch between applications in bursts.
void AppUsage::saveLater() {
    platform_.dispatcher->mainAfter(pause, [this] {
        {
            const std::lock_guard guard(lock_);
            isAwaited_ = false;
        }
        platform_.dispatcher->change([this] { save(); });
    });
}

void AppUsage::save() {
    const std::lock_guard one(saving_);
    std::map<std::string, double> uses;
    {
        const std::lock_guard guard(lock_);
        if (std::exchange(isSaved_, true)) return;
        uses = launches_;
    }
    try {
        const std::string& folder = platform_.layout.dataFolder;
        platform_.files->createFolders(folder);
        write_(folder + fileName, writeJson(nlohmann::json(uses)));
    } catch (const FileError&) {
        // What was seen stays in force for the life of the process.
    }
}

}  // namespace velto
