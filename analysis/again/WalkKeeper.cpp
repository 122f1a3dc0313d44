#include "analysis/again/WalkKeeper.h"

#include <utility>

#include "analysis/again/walk_conditions.h"

namespace velto {
namespace {

constexpr const char* keptFile = "/walk.bin";
constexpr std::size_t mostKept = 256 << 20;  // some three million folders
constexpr ReadLimit keptLimit = ownFile(mostKept);

std::vector<std::string> mountedBelow(const Platform& platform) {
    std::vector<std::string> paths;
    for (const MountedVolume& volume : platform.volumes->volumesBelow(platform.layout.home))
        paths.push_back(volume.path);
    return paths;
}

}  // namespace

std::string_view textOf(WalkDoubt doubt) {
    switch (doubt) {
        case WalkDoubt::none:
            return "ninguna";
        case WalkDoubt::nothingTold:
            return "el sistema no lleva historial de cambios";
        case WalkDoubt::nothingKept:
            return "no hay recorrido anterior";
        case WalkDoubt::otherConditions:
            return "otras condiciones";
        case WalkDoubt::otherHistory:
            return "otro historial de cambios";
        case WalkDoubt::tooOld:
            return "recorrido anterior demasiado antiguo";
        case WalkDoubt::clock:
            return "el reloj ha retrocedido";
        case WalkDoubt::changesUntold:
            return "cambios desconocidos";
        case WalkDoubt::tooManyChanges:
            return "demasiados cambios";
        case WalkDoubt::notOneWalk:
            return "lo leído no encaja";
    }
    return {};
}

WalkKeeper::WalkKeeper(Platform& platform, const std::vector<std::string>& excluded, bool hasAccess)
    : platform_(platform) {
    mark_ = platform.changes->mark(platform.layout.home);
    if (!mark_) return;
    begun_ = platform.clock->now();
    conditions_ = walkConditions(platform.layout, excluded, hasAccess, mountedBelow(platform));
}

std::unique_ptr<const WalkKeeper::Earlier> WalkKeeper::doubted(WalkDoubt doubt) {
    doubt_ = doubt;
    return nullptr;
}

std::unique_ptr<const WalkKeeper::Earlier> WalkKeeper::earlier(const CancellationFlag& cancelled) {
    if (!mark_) return doubted(WalkDoubt::nothingTold);
    auto earlier = std::make_unique<Earlier>();
    try {
        earlier->text = platform_.files->read(platform_.layout.dataFolder + keptFile, keptLimit);
    } catch (const FileError&) {
        return doubted(WalkDoubt::nothingKept);
    }
    const auto stamp = kept_walk_text::decodeStamp(earlier->text);
    if (!stamp) return doubted(WalkDoubt::nothingKept);
    if (stamp->conditions != conditions_) return doubted(WalkDoubt::otherConditions);
    if (stamp->mark.volume != mark_->volume || stamp->mark.event > mark_->event) {
        return doubted(WalkDoubt::otherHistory);
    }
    if (stamp->walked > begun_ || stamp->whole > stamp->walked) return doubted(WalkDoubt::clock);
    if (begun_ - stamp->whole > longest) return doubted(WalkDoubt::tooOld);

    auto kept = kept_walk_text::decode(earlier->text);
    if (!kept) return doubted(WalkDoubt::nothingKept);
    const HomeLayout& layout = platform_.layout;
    if (kept->walk.folders.front().name != layout.home) return doubted(WalkDoubt::nothingKept);
    const auto changes = platform_.changes->since(stamp->mark, layout.home, cancelled);
    if (!changes) return doubted(WalkDoubt::changesUntold);
    earlier->walk = std::move(kept->walk);
    earlier->whole = stamp->whole;
    auto readings = chooseReadings(earlier->walk, *changes, layout.providedFiles);
    if (!readings) return doubted(WalkDoubt::tooManyChanges);
    earlier->readings = std::move(*readings);
    doubt_ = WalkDoubt::none;
    return earlier;
}

std::shared_ptr<const std::string> WalkKeeper::text(const KeptWalk& walk,
                                                    const Earlier* earlier) const {
    const KeptStamp stamp{.conditions = conditions_,
                          .mark = *mark_,
                          .walked = begun_,
                          .whole = earlier == nullptr ? begun_ : earlier->whole};
    auto text = std::make_shared<std::string>(kept_walk_text::encode(stamp, walk));
    if (text->size() > mostKept) return nullptr;
    return text;
}

void WalkKeeper::save(Platform& platform, const std::string& text) {
    const std::string& folder = platform.layout.dataFolder;
    try {
        platform.files->createFolders(folder);
        platform.files->writeAtomically(folder + keptFile, text);
    } catch (const FileError&) {
        // As it says: what is kept is of an earlier moment, and changes since then are told.
    }
}

}  // namespace velto
