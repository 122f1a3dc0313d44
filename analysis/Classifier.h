#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/categories.h"
#include "platform/HomeLayout.h"
#include "platform/values/PlaceTable.h"
#include "platform/walk/WalkedFolder.h"

namespace velto {

/// Sorts the files of a home into categories: first by the folder that they lie in, then by their
/// extension. What a path says is worked out once per folder and noted in its mark, so that a file
/// costs no path. Read by all workers of a walk.
class Classifier {
public:
    /// The layout outlives the classifier. Notes the category folders in `places`.
    Classifier(const HomeLayout& layout, PlaceTable& places);

    /// The mark of a folder from which a walk starts, by its path.
    std::uint32_t markOfRoot(std::string_view path) const;

    /// Sets the mark of a folder found in another; it begins with the mark of that one.
    void note(WalkedFolder& folder) const;

    /// True for an entry that belongs to a category. What is hidden belongs to none; on a
    /// freedesktop home the hidden folders of the home itself are libraries, and in a library all
    /// counts.
    bool counts(const WalkedFolder& folder, const DirectoryEntry& entry) const {
        if (!counts(folder.mark)) return false;
        if (hiddenCountsInLibraries_ && areaOf(folder.mark) == libraryArea) return true;
        return !folder.hides(entry);
    }

    /// The same of a folder that has its mark.
    bool counts(const WalkedFolder& folder) const { return counts(folder.mark); }

    /// `place` is the file's own, null for none.
    Category categoryOf(const WalkedFolder& folder, std::string_view fileName,
                        const Place* place) const;

private:
    // A mark holds the first area that the folder lies in, whether it counts and, in a library, the
    // first rule that its path matches. Areas are in the order in which they are tried.
    enum Area : std::uint32_t {
        nowhere,
        photosArea,
        musicArea,
        downloadsArea,
        documentsArea,
        libraryArea,
        applicationsArea,
    };
    struct Rule {
        std::string_view substring;
        Category category;
        bool spansFolders;  // holds a slash before its end
    };
    struct AreaFolder {
        std::string_view path;
        Area area;
    };

    static constexpr std::uint32_t uncounted = 0x80;

    static std::uint32_t mark(Area area, std::uint32_t rule) { return area | rule << 8; }
    static Area areaOf(std::uint32_t mark) { return static_cast<Area>(mark & 0x7F); }
    static bool counts(std::uint32_t mark) { return (mark & uncounted) == 0; }
    static std::uint32_t ruleOf(std::uint32_t mark) { return mark >> 8; }

    void noteArea(WalkedFolder& folder, Area above, Area area) const;
    std::uint32_t firstRule(std::string_view text, std::uint32_t limit) const;
    Category libraryCategory(const WalkedFolder& folder, std::string_view fileName,
                             std::uint32_t limit) const;

    const bool hiddenCountsInLibraries_;
    const std::string home_;
    std::vector<AreaFolder> areaFolders_;
    std::vector<Rule> rules_;
    // The others end with a slash, and never match by a file's name. In order.
    std::vector<std::uint32_t> rulesOfNames_;
    Category libraryDefault_;
    std::size_t longestRule_ = 0;
};

}  // namespace velto
