#include "analysis/categories.h"

#include <algorithm>
#include <cstdint>

#include "platform/values/text.h"

namespace velto {
namespace {

/// The first eight bytes of a text as one number, in lower case: compared at once instead of byte
/// by byte, for every file of a home is asked for its extension.
constexpr std::uint64_t beginningOf(std::string_view text) {
    std::uint64_t beginning = 0;
    for (const char character : text.substr(0, sizeof beginning))
        beginning = beginning << 8 | static_cast<unsigned char>(lowerCasedAscii(character));
    return beginning;
}

struct ExtensionRow {
    constexpr ExtensionRow(std::string_view text, Category itsCategory)
        : extension(text), category(itsCategory), beginning(beginningOf(text)) {}

    std::string_view extension;
    Category category;
    std::uint64_t beginning;
};

constexpr Category photos = Category::photos;
constexpr Category music = Category::music;
constexpr Category documents = Category::documents;
constexpr Category applications = Category::applications;

constexpr auto extensionTable = [] {
    std::array rows{std::to_array<ExtensionRow>({
        // clang-format off
        {"mov", photos}, {"mp4", photos}, {"m4v", photos}, {"avi", photos}, {"mkv", photos},
        {"wmv", photos}, {"flv", photos}, {"webm", photos}, {"mts", photos}, {"m2ts", photos},
        {"3gp", photos}, {"hevc", photos}, {"prproj", photos}, {"fcpbundle", photos},
        {"jpg", photos}, {"jpeg", photos}, {"png", photos}, {"heic", photos}, {"heif", photos},
        {"tiff", photos}, {"tif", photos}, {"gif", photos}, {"raw", photos}, {"cr2", photos},
        {"cr3", photos}, {"nef", photos}, {"arw", photos}, {"dng", photos}, {"psd", photos},
        {"ai", photos}, {"bmp", photos}, {"webp", photos}, {"rw2", photos}, {"orf", photos},

        {"mp3", music}, {"m4a", music}, {"aac", music}, {"wav", music}, {"flac", music},
        {"aiff", music}, {"alac", music}, {"ogg", music}, {"wma", music}, {"mid", music},
        {"aif", music},

        {"pdf", documents}, {"doc", documents}, {"docx", documents}, {"xls", documents},
        {"xlsx", documents}, {"ppt", documents}, {"pptx", documents}, {"key", documents},
        {"pages", documents}, {"numbers", documents}, {"txt", documents}, {"md", documents},
        {"rtf", documents}, {"csv", documents}, {"epub", documents}, {"zip", documents},
        {"tar", documents}, {"gz", documents}, {"7z", documents}, {"rar", documents},
        {"bak", documents},

        {"app", applications}, {"dmg", applications}, {"pkg", applications},
        {"ipa", applications},
        // clang-format on
    })};
    std::ranges::sort(rows, {}, &ExtensionRow::beginning);
    return rows;
}();
static_assert(std::ranges::adjacent_find(extensionTable, {}, &ExtensionRow::beginning) ==
                  extensionTable.end(),
              "no two extensions begin alike, so that one search finds the only one");

bool isExtension(std::string_view written, std::string_view extension) {
    return std::ranges::equal(written, extension, {},
                              [](char letter) { return lowerCasedAscii(letter); });
}

}  // namespace

std::optional<Category> categoryWithId(std::string_view id) {
    for (std::size_t index = 0; index < categoryCount; ++index) {
        if (categoryTable[index].id == id) return static_cast<Category>(index);
    }
    return std::nullopt;
}

Category categoryByExtension(std::string_view fileName) {
    const std::string_view extension = extensionOf(fileName);
    const auto found = std::ranges::lower_bound(extensionTable, beginningOf(extension), {},
                                                &ExtensionRow::beginning);
    const bool isKnown = found != extensionTable.end() && isExtension(extension, found->extension);
    return isKnown ? found->category : Category::documents;
}

}  // namespace velto
