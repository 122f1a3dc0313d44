#include "analysis/categories.h"

#include <array>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "analysis/relative_time.h"

namespace velto {
namespace {

TEST(Categories, AnExtensionDecidesWhateverItsCase) {
    EXPECT_EQ(categoryByExtension("a.mov"), Category::photos);
    EXPECT_EQ(categoryByExtension("IMG_1.HEIC"), Category::photos);
    EXPECT_EQ(categoryByExtension("a.fcpbundle"), Category::photos);
    EXPECT_EQ(categoryByExtension("a.3gp"), Category::photos);
    EXPECT_EQ(categoryByExtension("a.Mp3"), Category::music);
    EXPECT_EQ(categoryByExtension("a.aif"), Category::music);
    EXPECT_EQ(categoryByExtension("a.7z"), Category::documents);
    EXPECT_EQ(categoryByExtension("a.numbers"), Category::documents);
    EXPECT_EQ(categoryByExtension("a.dmg"), Category::applications);
    EXPECT_EQ(categoryByExtension("a.IPA"), Category::applications);
}

struct Kind {
    Category category;
    std::string_view extensions;
};
constexpr std::array<Kind, 4> kinds{{
    {Category::photos,
     "mov mp4 m4v avi mkv wmv flv webm mts m2ts 3gp hevc prproj fcpbundle jpg jpeg png heic heif "
     "tiff tif gif raw cr2 cr3 nef arw dng psd ai bmp webp rw2 orf"},
    {Category::music, "mp3 m4a aac wav flac aiff alac ogg wma mid aif"},
    {Category::documents,
     "pdf doc docx xls xlsx ppt pptx key pages numbers txt md rtf csv epub zip tar gz 7z rar bak"},
    {Category::applications, "app dmg pkg ipa"},
}};

TEST(Categories, EveryExtensionOfTheTableHasItsCategory) {
    std::set<std::string> met;
    for (const auto& [category, extensions] : kinds) {
        std::istringstream words{std::string(extensions)};
        for (std::string extension; words >> extension;) {
            EXPECT_EQ(categoryByExtension("a." + extension), category) << extension;
            met.insert(extension);
        }
    }
    EXPECT_EQ(met.size(), 70u);
}

TEST(Categories, EachRowIsWhatThePageShows) {
    const auto textOf = [](const CategoryRow& row) {
        std::string text;
        for (const std::string_view part :
             {row.id, row.name, row.icon, row.colour, row.equivalence, row.bigFileKind}) {
            text += (text.empty() ? "" : " | ") + std::string(part);
        }
        return text;
    };
    std::vector<std::string> rows;
    for (const CategoryRow& row : categoryTable)
        rows.push_back(textOf(row));
    EXPECT_EQ(rows,
              (std::vector<std::string>{
                  ("fotos | Fotos y vídeo | photo | #E8355A | "
                   "aprox. 150.000 fotos o un año de vídeos caseros | video"),
                  "apps | Aplicaciones | apps | #2563EB | como 40 juegos grandes | app",
                  "docs | Documentos | doc | #E88F0C | como 8.000 libros digitales | doc",
                  "descargas | Descargas | tray | #0BA5D6 | como 190 películas en HD | descarga",
                  "musica | Música y audio | music | #7C3AED | como 6.500 canciones | video",
                  ("sistema | macOS y Datos del sistema | cpu | #8B919C | "
                   "el espacio esencial para que tu Mac funcione | doc")}));
}

TEST(Categories, OnlyTheLastExtensionCounts) {
    EXPECT_EQ(categoryByExtension("photos.jpg.zip"), Category::documents);
    EXPECT_EQ(categoryByExtension("backup.zip.jpg"), Category::photos);
}

TEST(Categories, WhatTheTableDoesNotNameIsADocument) {
    EXPECT_EQ(categoryByExtension("README"), Category::documents);
    EXPECT_EQ(categoryByExtension("a.unknown"), Category::documents);
    EXPECT_EQ(categoryByExtension("mov"), Category::documents);
    EXPECT_EQ(categoryByExtension(".mov"), Category::documents);
    EXPECT_EQ(categoryByExtension("a."), Category::documents);
    EXPECT_EQ(categoryByExtension(""), Category::documents);
    EXPECT_EQ(categoryByExtension("a.mp3 "), Category::documents);
}

TEST(Categories, EveryIdentifierLeadsBackToItsCategory) {
    for (std::size_t index = 0; index < categoryCount; ++index) {
        EXPECT_EQ(categoryWithId(categoryTable[index].id), static_cast<Category>(index));
    }
    EXPECT_EQ(categoryWithId("Fotos"), std::nullopt);
}

TEST(RelativeTime, ReadsLikeTheTableOfItsRanges) {
    EXPECT_EQ(relativeTime(0), "hoy");
    EXPECT_EQ(relativeTime(0.99), "hoy");
    EXPECT_EQ(relativeTime(1), "ayer");
    EXPECT_EQ(relativeTime(1.99), "ayer");
    EXPECT_EQ(relativeTime(2), "hace 2 días");
    EXPECT_EQ(relativeTime(29.99), "hace 29 días");
    EXPECT_EQ(relativeTime(30), "hace 1 mes");
    EXPECT_EQ(relativeTime(45), "hace 1 mes");
    EXPECT_EQ(relativeTime(59.99), "hace 1 mes");
    EXPECT_EQ(relativeTime(60), "hace 2 meses");
    EXPECT_EQ(relativeTime(364.99), "hace 12 meses");
    EXPECT_EQ(relativeTime(365), "hace 1 año");
    EXPECT_EQ(relativeTime(400), "hace 1 año");
    EXPECT_EQ(relativeTime(729.99), "hace 1 año");
    EXPECT_EQ(relativeTime(730), "hace 2 años");
    EXPECT_EQ(relativeTime(800), "hace 2 años");
}

}  // namespace
}  // namespace velto
