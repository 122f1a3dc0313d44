#include "TrashWorld.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <ostream>

#include "support/stored_path.h"
#include "support/tree_text.h"
#include "support/volumes.h"

namespace velto {
namespace {

namespace fs = std::filesystem;
}

void PrintTo(const TrashItem& item, std::ostream* stream) {
    *stream << item.id << " of " << item.opID << ": " << testing::PrintToString(item.originalPath);
}

void PrintTo(const Operation& operation, std::ostream* stream) {
    *stream << operation.id << ": " << testing::PrintToString(operation.items);
}

std::string TrashWorld::fastVolume() { return otherVolume(); }

bool TrashWorld::hasTwoVolumes() { return areTwoVolumes(fastVolume(), buildVolume()); }

TrashWorld::TrashWorld(const std::string& homeVolume, const std::string& volumeOfTrash)
    : home(homeVolume), layout(HomeLayout::macOS(home.path())) {
    if (volumeOfTrash.empty()) return;
    trashVolume.emplace(volumeOfTrash);
    layout.applicationSupport = trashVolume->path();
    layout.dataFolder = trashVolume->path("Velto");
    layout.trashFolder = trashVolume->path("Velto/Trash");
}

void TrashWorld::keep(const std::string& relative, const std::string& content) {
    home.text(relative, content).lastUsed(100'000);
    kept_[relative] = treeText(path(relative));
}

void TrashWorld::keepFolder(const std::string& relative) {
    home.text(relative + "/notes.txt", "some notes").lastUsed(200'000);
    home.text(relative + "/empty", "").lastUsed(300'000);
    home.text(relative + "/deep/er/line\nbreak \"quoted\" \\ back", std::string(70'000, 'x'));
    home.folder(relative + "/nothing in it");
    home.link(relative + "/link out", "/etc/hosts");
    home.link(relative + "/deep/dangling", "nowhere/at all");
    chmod(path(relative + "/deep").c_str(), 0555);
    kept_[relative] = treeText(path(relative));
}

void TrashWorld::keepMany() {
    keep("Downloads/año nuevo.pdf", "pdf");
    keep("Downloads/\u202Eright to left.txt", std::string(5'000, 'r'));
    keep("Documents/two\nlines \"quoted\".txt", "lines");
    keep("Documents/empty", "");
    keepFolder("Library/Caches/com.example.app");
}

std::vector<std::string> TrashWorld::keptPaths() const {
    std::vector<std::string> paths;
    for (const auto& [relative, text] : kept_)
        paths.push_back(path(relative));
    return paths;
}

TrashWorld::Whereabouts TrashWorld::prove(const std::set<std::string>& mayBeGone) const {
    const auto fresh = process();
    const std::vector<TrashItem> items = fresh->service.items();
    Whereabouts found;
    std::set<std::string> known;  // in the trash volume
    std::size_t listed = 0;
    for (const auto& [relative, text] : kept_) {
        const bool mustBeWhole = !mayBeInPart.contains(relative);
        const std::string here = treeText(path(relative));
        if (!here.empty()) {
            EXPECT_TRUE(!mustBeWhole || here == text) << relative << " is not whole in its place";
            found.home.insert(relative);
        }
        for (const TrashItem& item : items) {
            if (item.originalPath != path(relative)) continue;
            ++listed;
            const std::string stored = storedPath(trashPath(), item);
            EXPECT_FALSE(stored.empty() && mustBeWhole)
                << relative << " is listed but not in the trash";
            if (stored.empty()) continue;
            EXPECT_TRUE(!mustBeWhole || treeText(stored) == text)
                << relative << " is not whole in the trash";
            EXPECT_TRUE(found.trash.insert(relative).second)
                << relative << " is twice in the trash";
            known.insert(item.opID + "/" + fs::path(stored).filename().string());
        }
        const bool isHere = found.home.contains(relative);
        const bool isInTrash = found.trash.contains(relative);
        EXPECT_FALSE(isHere && isInTrash) << relative << " is in both places";
        if (isHere || isInTrash) continue;
        EXPECT_TRUE(mayBeGone.contains(relative)) << relative << " is lost";
        found.gone.insert(relative);
    }
    EXPECT_EQ(items.size(), listed) << "the trash lists something that was never kept";
    if (allowsLeftovers) return found;

    const std::string ownFolder = fs::relative(layout.dataFolder, home.path());
    for (const std::string& leaf : leavesBelow(home.path())) {
        const bool isKept = std::ranges::any_of(kept_, [&](const auto& one) {
            return leaf == one.first || leaf.starts_with(one.first + "/");
        });
        const bool isEmptyFolder = leaf.empty() || leaf.back() == '/';
        EXPECT_TRUE(isKept || isEmptyFolder || leaf.starts_with(ownFolder + "/"))
            << leaf << " was left in the home";
    }
    for (const std::string& leaf : leavesBelow(trashPath())) {
        const bool isKnown = leaf == "manifest.json" || leaf.empty() ||
                             std::ranges::any_of(known, [&](const std::string& one) {
                                 return leaf == one || leaf.starts_with(one + "/");
                             });
        // A half-written temporary file of the manifest is nobody's.
        const bool isTemporary = leaf.starts_with(".velto-") && leaf.find('/') == std::string::npos;
        EXPECT_TRUE(isKnown || isTemporary || leaf.back() == '/')
            << leaf << " was left in the trash";
    }
    return found;
}

void TrashWorld::proveTrashWorks() {
    const auto undoAll = [&](VeltoTrashService& service) {
        for (const TrashItem& item : std::vector(service.items())) {
            try {
                service.restore(item.id);
            } catch (const TrashError&) {
                // Removed already, by a removal that failed later on: it stays listed.
                EXPECT_FALSE(mayBeInPart.empty()) << item.name << " is not in the trash";
            }
        }
    };
    const auto fresh = process();
    undoAll(fresh->service);
    const Whereabouts after = prove([&] {
        std::set<std::string> all;
        for (const auto& [relative, text] : kept_)
            all.insert(relative);
        return all;
    }());
    EXPECT_TRUE(after.trash.empty()) << "undoing has left something";
    std::vector<std::string> there;
    for (const std::string& relative : after.home)
        there.push_back(path(relative));
    const Operation again = fresh->service.moveToTrash(there, "wind");
    EXPECT_EQ(again.items.size(), there.size());
    fresh->service.undoOperation(again.id);
    EXPECT_EQ(prove(after.gone).home.size(), there.size());
}

}  // namespace velto
