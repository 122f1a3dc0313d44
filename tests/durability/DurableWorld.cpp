#include "DurableWorld.h"

#include <fcntl.h>

#include <algorithm>

#include "platform/own_folder.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr const char* drive = "Library/Mobile Documents/com~apple~CloudDocs";

/// The names under which a file may come back to a place that was taken meanwhile.
std::vector<std::string> besides(const std::string& path) {
    const std::size_t stop = path.rfind('.');
    const bool hasExtension = stop != std::string::npos && stop > path.rfind('/');
    std::vector<std::string> places{path};
    for (const char* number : {"1", "2"}) {
        const std::string added = std::string(" (restaurado ") + number + ")";
        places.push_back(hasExtension ? path.substr(0, stop) + added + path.substr(stop)
                                      : path + added);
    }
    return places;
}

/// Every path below a folder that is no folder itself.
void collect(const ModelImage& image, ModelImage::Number folder, const std::string& below,
             std::vector<std::string>& leaves) {
    for (const auto& [name, entry] : image.at(folder).entries) {
        const ModelImage::Number number = image.mounted(entry);
        if (image.at(number).isFolder()) {
            collect(image, number, below + name + "/", leaves);
        } else {
            leaves.push_back(below + name);
        }
    }
}

}  // namespace

ModelPlatform::ModelPlatform(FileCalls& calls, const HomeLayout& ofHome) {
    files = std::make_unique<PosixFileManager>(calls);
    mover = std::make_unique<PosixFileManager>(calls);
    directories = std::make_unique<FakeDirectoryReader>();
    defaults = std::make_unique<FakeUserDefaults>();
    layout = ofHome;
}

DurableProcess::DurableProcess(ModelDisk& disk, const HomeLayout& layout, double now)
    : calls(disk),
      platform(calls, layout),
      log(install<FakeLog>(platform.log)),
      clock(install<FakeClock>(platform.clock)),
      trash(files, files, clock, log, platform.layout),
      history(files, files, log, platform.layout),
      cloud(files, files, log, platform.layout),
      usage(platform),
      apps(platform, usage),
      removal(platform, apps) {
    clock.time = now;
}

void DurableProcess::start() {
    makeOwnFolder(platform.layout.dataFolder, calls);
    removeStaleTemporaries(platform.layout.dataFolder, calls);
    trash.items();
    cloud.settle();
    removal.sweep();
}

std::vector<std::string> idsOf(const HistoryService& history) {
    std::vector<std::string> ids;
    for (const HistoryEntry& entry : history.entries())
        ids.push_back(entry.id);
    return ids;
}

DurableWorld::DurableWorld() {
    ModelFileCalls calls(disk);
    PosixFileManager files(calls);
    files.createFolders(path("External"));
    files.createFolders(path("Library/Application Support"));
    files.createFolders(path(drive));
    disk.mount(path("External"));
    put(file, "the only copy of a paper");
    keepFolder(folder);
    put(outerFile, std::string(300, 'f'));
    keepFolder(outerFolder);
    for (const std::string& relative : all())
        kept_[relative] = disk.live().text(path(relative));
    putBystander("Downloads/other.txt", "not chosen");
    putBystander("Documents/other.txt", "not chosen either");
    putBystander("External/other.txt", "nor this");
    disk.settle();
}

void DurableWorld::put(const std::string& relative, const std::string& content) {
    ModelFileCalls calls(disk);
    PosixFileManager files(calls);
    files.createFolders(parentFolder(path(relative)));
    files.writeAtomically(path(relative), content);
}

void DurableWorld::keepFolder(const std::string& relative) {
    put(relative + "/deep/two", "2");
    put(relative + "/one", "1");
    put(relative + "/zero", "");
    ModelFileCalls calls(disk);
    calls.makeLink("nowhere", AT_FDCWD, path(relative + "/link").c_str());
    calls.changeMode(AT_FDCWD, path(relative + "/deep").c_str(), 0555);
}

void DurableWorld::putBystander(const std::string& relative, const std::string& content) {
    put(relative, content);
    bystanders_[relative] = disk.live().text(path(relative));
}

void DurableWorld::takeAway(const std::string& relative) {
    ModelFileCalls calls(disk);
    PosixFileManager(calls).removeAll(path(relative));
    std::erase_if(bystanders_,
                  [&](const auto& one) { return one.first.starts_with(relative + "/"); });
}

std::vector<std::string> DurableWorld::paths(const std::vector<std::string>& relatives) const {
    std::vector<std::string> absolute;
    for (const std::string& relative : relatives)
        absolute.push_back(path(relative));
    return absolute;
}

/// Where a kept thing may stand in the home: at its place or, that being gone, in Downloads.
std::vector<std::string> DurableWorld::placesFor(const std::string& relative) const {
    std::vector<std::string> places = besides(path(relative));
    const std::string fallback = layout.downloads + "/" + std::string(lastPathComponent(relative));
    if (fallback != path(relative)) places.push_back(fallback);
    return places;
}

/// Where a kept thing is whole in the home; empty when it is not there.
std::string DurableWorld::whole(const ModelImage& image, const std::string& relative) const {
    for (const std::string& place : placesFor(relative)) {
        if (image.text(place) == kept_.at(relative)) return place;
    }
    return {};
}

/// How many places hold a kept thing in full. What stands there in part is broken.
int DurableWorld::placesOf(const ModelImage& image, DurableProcess& process,
                           const std::string& relative, Findings& findings) const {
    int places = 0;
    const auto count = [&](const std::string& place, bool mustBeThere) {
        const std::string text = image.text(place);
        if (text == kept_.at(relative)) ++places;
        const bool isFine = text.empty() ? !mustBeThere : text == kept_.at(relative);
        if (!isFine) findings.broken.push_back(relative + " is not whole at " + place);
    };
    for (const std::string& place : placesFor(relative)) {
        const auto bystander = bystanders_.find(place.substr(layout.home.size() + 1));
        if (bystander == bystanders_.end()) count(place, false);
    }
    for (const TrashItem& item : process.trash.items()) {
        if (item.originalPath != path(relative)) continue;
        count(layout.trashFolder + "/" + item.opID + "/" + item.id + "-" + item.name, true);
    }
    count(layout.cloudFolder + "/" + std::string(lastPathComponent(relative)), false);
    return places;
}

void DurableWorld::lookForChanges(const ModelImage& image, Findings& findings) const {
    for (const auto& [relative, text] : bystanders_) {
        if (image.text(path(relative)) != text) {
            findings.broken.push_back(relative + " was touched, and nobody had chosen it");
        }
    }
    std::vector<std::string> leaves;
    collect(image, image.find(layout.home), "", leaves);
    const std::string own = layout.dataFolder.substr(layout.home.size() + 1) + "/";
    const std::string cloud = layout.cloudFolder.substr(layout.home.size() + 1) + "/";
    for (const std::string& leaf : leaves) {
        const bool isKept = std::ranges::any_of(kept_, [&](const auto& one) {
            return std::ranges::any_of(placesFor(one.first), [&](const std::string& place) {
                return isAtOrBelow(path(leaf), place);
            });
        });
        const bool isOwn = leaf.starts_with(own) || leaf.starts_with(cloud);
        if (!isKept && !isOwn && !bystanders_.contains(leaf)) ++findings.leftovers;
    }
}

void DurableWorld::bringAllBack(DurableProcess& process, Findings& findings) const {
    for (const TrashItem& item : std::vector(process.trash.items())) {
        try {
            process.trash.restore(item.id);
        } catch (const std::exception& error) {
            findings.broken.push_back(item.originalPath + " does not come back: " + error.what());
        }
    }
    for (const auto& [relative, text] : kept_) {
        const std::string there =
            layout.cloudFolder + "/" + std::string(lastPathComponent(relative));
        if (process.files.exists(there)) process.cloud.moveFrom({there});
    }
}

DurableWorld::Findings DurableWorld::examine(ModelDisk& after,
                                             const std::set<std::string>& mayBeGone,
                                             bool mayBeInTwoPlaces) const {
    Findings findings;
    const auto fresh = process(after);
    fresh->start();
    std::set<std::string> found;
    for (const auto& [relative, text] : kept_) {
        const int places = placesOf(after.live(), *fresh, relative, findings);
        if (places > 0) found.insert(relative);
        if (places == 0 && !mayBeGone.contains(relative)) {
            findings.broken.push_back(relative + " is lost");
        }
        if (places > 1 && !mayBeInTwoPlaces) {
            findings.broken.push_back(relative + " is in two places");
        }
    }
    if (!histories.empty() &&
        std::ranges::find(histories, idsOf(fresh->history)) == histories.end()) {
        findings.broken.push_back("the history is neither the old nor the new one");
    }
    bringAllBack(*fresh, findings);
    for (const std::string& relative : found) {
        const bool isDeleted = mayBeGone.contains(relative);
        if (whole(after.live(), relative).empty() && !isDeleted) {
            findings.broken.push_back(relative + " was there, and cannot be brought back");
        }
    }
    lookForChanges(after.live(), findings);
    return findings;
}

}  // namespace velto
