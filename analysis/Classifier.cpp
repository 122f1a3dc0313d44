#include "analysis/Classifier.h"

#include <algorithm>
#include <string>

#include "platform/values/text.h"

namespace velto {
namespace {

/// The first of two areas in the order of trial; 0 is none.
template <typename Area>
Area firstArea(Area one, Area other) {
    if (one == 0 || other == 0) return std::max(one, other);
    return std::min(one, other);
}

}  // namespace

Classifier::Classifier(const HomeLayout& layout, PlaceTable& places)
    : hiddenCountsInLibraries_(layout.kind == HomeLayout::Kind::freedesktop),
      home_(layout.home),
      libraryDefault_(categoryWithId(layout.libraryDefault).value_or(Category::system)) {
    const auto add = [&](const std::string& path, Area area) {
        if (path.empty()) return;  // this home lacks the role
        areaFolders_.push_back({path, area});
        Place& place = places.at(path);
        place.role = firstArea<std::uint32_t>(place.role, area);
        places.keepFlagged(path);
    };
    add(layout.pictures, photosArea);
    add(layout.movies, photosArea);
    add(layout.music, musicArea);
    add(layout.downloads, downloadsArea);
    add(layout.documents, documentsArea);
    add(layout.desktop, documentsArea);
    for (const std::string& path : layout.libraryRoots)
        add(path, libraryArea);
    for (const std::string& path : layout.applicationRoots)
        add(path, applicationsArea);

    for (const LibraryRule& rule : layout.libraryRules) {
        const std::size_t slash = rule.substring.find('/');
        if (!rule.substring.ends_with('/'))
            rulesOfNames_.push_back(static_cast<std::uint32_t>(rules_.size()));
        rules_.push_back({rule.substring, categoryWithId(rule.category).value_or(libraryDefault_),
                          slash != std::string_view::npos});
        longestRule_ = std::max(longestRule_, rule.substring.size());
    }
}

std::uint32_t Classifier::markOfRoot(std::string_view path) const {
    Area area = nowhere;
    for (const AreaFolder& folder : areaFolders_) {
        if (isAtOrBelow(path, folder.path)) area = firstArea(area, folder.area);
    }
    const auto none = static_cast<std::uint32_t>(rules_.size());
    return mark(area, area == libraryArea ? firstRule(std::string(path) + "/", none) : none);
}

void Classifier::note(WalkedFolder& folder) const {
    const Area above = areaOf(folder.mark);
    const auto own = folder.place() == nullptr ? nowhere : static_cast<Area>(folder.place()->role);
    Area area = firstArea(above, own);
    bool isCounted = counts(folder.mark) && !folder.isHidden;
    if (hiddenCountsInLibraries_ && !isCounted) {
        const bool isHiddenInHome = folder.isHidden && folder.parent()->parent() == nullptr &&
                                    folder.parent()->name() == home_;
        if (isHiddenInHome) area = firstArea(area, libraryArea);
        isCounted =
            own != nowhere || isHiddenInHome || (counts(folder.mark) && above == libraryArea);
    }
    noteArea(folder, above, area);
    if (!isCounted) folder.mark |= uncounted;
}

void Classifier::noteArea(WalkedFolder& folder, Area above, Area area) const {
    if (area != libraryArea) {
        folder.mark = mark(area, ruleOf(folder.mark));
    } else if (above != libraryArea) {
        const auto none = static_cast<std::uint32_t>(rules_.size());
        folder.mark = mark(area, firstRule(folder.path() + "/", none));
    } else if (ruleOf(folder.mark) == 0) {
        folder.mark = mark(area, 0);
    } else {
        // What matches anew has to reach into this folder's name, so the end of the path will do.
        const std::string end = folder.pathEnd(longestRule_ + folder.name().size() + 1) + "/";
        folder.mark = mark(area, firstRule(end, ruleOf(folder.mark)));
    }
}

Category Classifier::categoryOf(const WalkedFolder& folder, std::string_view fileName,
                                const Place* place) const {
    Area area = areaOf(folder.mark);
    if (place != nullptr) area = firstArea(area, static_cast<Area>(place->role));
    switch (area) {
        case photosArea:
            return Category::photos;
        case musicArea:
            return Category::music;
        case downloadsArea:
            return Category::downloads;
        case documentsArea:
            return Category::documents;
        case libraryArea:
            return libraryCategory(folder, fileName, ruleOf(folder.mark));
        case applicationsArea:
            return Category::applications;
        case nowhere:
            break;
    }
    return categoryByExtension(fileName);
}

/// The first rule before `limit` that `text` matches, else `limit`.
std::uint32_t Classifier::firstRule(std::string_view text, std::uint32_t limit) const {
    for (std::uint32_t index = 0; index < limit; ++index) {
        if (text.find(rules_[index].substring) != std::string_view::npos) return index;
    }
    return limit;
}

/// `limit` is the first rule that the folder's path matches; earlier ones may match by the name.
Category Classifier::libraryCategory(const WalkedFolder& folder, std::string_view fileName,
                                     std::uint32_t limit) const {
    for (const std::uint32_t index : rulesOfNames_) {
        if (index >= limit) break;
        const Rule& rule = rules_[index];
        if (!rule.spansFolders && rule.substring.size() > fileName.size()) continue;
        const bool matches = rule.spansFolders
                                 ? folder.pathOf(fileName).find(rule.substring) != std::string::npos
                                 : fileName.find(rule.substring) != std::string_view::npos;
        if (matches) return rule.category;
    }
    return limit < rules_.size() ? rules_[limit].category : libraryDefault_;
}

}  // namespace velto
