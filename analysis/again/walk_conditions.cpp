#include "analysis/again/walk_conditions.h"

#include "analysis/folders/number_text.h"

namespace velto {
namespace {

void appendAll(std::string& text, const std::vector<std::string>& paths) {
    number_text::append(text, std::uint64_t{paths.size()});
    for (const std::string& path : paths)
        number_text::appendText(text, path);
}

}  // namespace

// Rules and tables that are part of the program change with its version only.
std::string walkConditions(const HomeLayout& layout, const std::vector<std::string>& excluded,
                           bool hasAccess, const std::vector<std::string>& mounted) {
    std::string text;
    number_text::appendText(text, VELTO_VERSION);
    number_text::append(text, static_cast<std::uint64_t>(layout.kind));
    number_text::append(text, std::uint64_t{hasAccess ? 1U : 0U});
    appendAll(text, {layout.home, layout.pictures, layout.movies, layout.music, layout.downloads,
                     layout.documents, layout.desktop});
    appendAll(text, layout.libraryRoots);
    appendAll(text, layout.applicationRoots);
    appendAll(text, layout.walkRoots);
    appendAll(text, layout.neverWalked);
    appendAll(text, excluded);
    appendAll(text, mounted);
    return text;
}

}  // namespace velto
