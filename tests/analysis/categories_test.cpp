#include "analysis/categories.h"

#include <set>

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
