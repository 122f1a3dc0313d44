#include "analysis/growth/GrowthKeeper.h"

#include <utility>

#include "platform/values/text.h"

namespace velto {
namespace {

// A clock that was never set; what is stored is not judged by it.
constexpr double earliestMoment = 1'577'836'800;  // 2020
// Far more than fits at the smallest size of a folder: each step leaves fewer of them.
constexpr int mostSteps = 20;

std::string volumeAt(FileMover& mover, const std::string& path) {
    try {
        return mover.volumeOf(*mover.openFolder(path, FolderPath::throughLinks));
    } catch (const FileError&) {
        return {};  // then nothing on it is recognised under another path
    }
}

}  // namespace

bool GrowthKeeper::keep(const FolderTree& tree, double now,
                        std::vector<std::string> leftOut) const {
    if (tree.empty() || now < earliestMoment) {
        platform_.log->line("Velto ▶ crecimiento: este análisis no se guarda para comparar");
        return false;
    }
    try {
        GrowthFacts facts{.moment = static_cast<std::int64_t>(now), .leftOut = std::move(leftOut)};
        for (FolderTree::Index root = 0; root < tree.rootCount(); ++root)
            facts.volumes.push_back(volumeAt(*platform_.mover, std::string(tree.name(root))));
        GrowthStore(*platform_.files, *platform_.mover, platform_.layout)
            .add(fitting(tree, std::move(facts)));
        return true;
    } catch (const FileError& error) {
        platform_.log->line("Velto ▶ crecimiento: no se pudo guardar: " + singleLine(error.what()));
        return false;
    }
}

/// With as many folders as have room.
GrowthSnapshot GrowthKeeper::fitting(const FolderTree& tree, GrowthFacts facts) const {
    GrowthSnapshot snapshot = GrowthSnapshot::of(tree, facts);
    for (int step = 0; step < mostSteps && !snapshot.encoded(); ++step) {
        facts.smallest *= 2;
        snapshot = GrowthSnapshot::of(tree, facts);
    }
    return snapshot;
}

}  // namespace velto
