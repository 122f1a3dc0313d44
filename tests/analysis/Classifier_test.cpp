#include "analysis/Classifier.h"

#include <map>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "platform/values/text.h"

namespace velto {
namespace {

bool isUnder(std::string_view path, const std::string& folder) {
    return !folder.empty() && isAtOrBelow(path, folder);
}

/// The rules read off one after the other for a whole path: slow, and plain to see.
std::string_view categoryOfPath(const HomeLayout& layout, const std::string& path) {
    const auto underAny = [&](const std::vector<std::string>& folders) {
        for (const std::string& folder : folders) {
            if (isUnder(path, folder)) return true;
        }
        return false;
    };
    if (isUnder(path, layout.pictures) || isUnder(path, layout.movies)) return "fotos";
    if (isUnder(path, layout.music)) return "musica";
    if (isUnder(path, layout.downloads)) return "descargas";
    if (isUnder(path, layout.documents) || isUnder(path, layout.desktop)) return "docs";
    if (underAny(layout.libraryRoots)) {
        for (const LibraryRule& rule : layout.libraryRules) {
            if (path.find(rule.substring) != std::string::npos) return rule.category;
        }
        return layout.libraryDefault;
    }
    if (underAny(layout.applicationRoots)) return "apps";
    return row(categoryByExtension(lastPathComponent(path))).id;
}

/// Goes down a path as a walk does.
class Descent {
public:
    explicit Descent(const HomeLayout& layout) : layout_(layout), classifier_(layout, places_) {}

    std::string_view categoryOf(const std::string& path) {
        FolderReference folder = FolderReference::root(
            layout_.home, 0, classifier_.markOfRoot(layout_.home), places_.find(layout_.home));
        std::string_view rest = std::string_view(path).substr(layout_.home.size() + 1);
        for (auto slash = rest.find('/'); slash != std::string_view::npos; slash = rest.find('/')) {
            const std::string_view name = rest.substr(0, slash);
            folder = FolderReference::inside(folder, name, placeOf(folder, name));
            classifier_.note(*folder);
            rest.remove_prefix(slash + 1);
        }
        return row(classifier_.categoryOf(*folder, rest, placeOf(folder, rest))).id;
    }

private:
    static const Place* placeOf(const FolderReference& folder, std::string_view name) {
        return folder->place() == nullptr ? nullptr : folder->place()->child(name);
    }

    const HomeLayout& layout_;
    PlaceTable places_;
    Classifier classifier_;
};

std::string macCategory(const std::string& path) {
    const HomeLayout layout = HomeLayout::macOS("/Users/ana");
    return std::string(Descent(layout).categoryOf("/Users/ana/" + path));
}

TEST(Classifier, TheFolderWinsOverTheExtension) {
    EXPECT_EQ(macCategory("Documents/song.mp3"), "docs");
    EXPECT_EQ(macCategory("Desktop/film.mov"), "docs");
    EXPECT_EQ(macCategory("Pictures/list.pdf"), "fotos");
    EXPECT_EQ(macCategory("Movies/a/b/c.zip"), "fotos");
    EXPECT_EQ(macCategory("Music/cover.jpg"), "musica");
    EXPECT_EQ(macCategory("Downloads/installer.dmg"), "descargas");
    EXPECT_EQ(macCategory("Applications/Tool.app/Contents/movie.mov"), "apps");
}

TEST(Classifier, OutsideTheKnownFoldersTheExtensionDecides) {
    EXPECT_EQ(macCategory("song.mp3"), "musica");
    EXPECT_EQ(macCategory("work/film.MOV"), "fotos");
    EXPECT_EQ(macCategory("work/main.c"), "docs");
    EXPECT_EQ(macCategory("Musicals/a.txt"), "docs");
}

TEST(Classifier, AFileThatBearsAFoldersNameCountsAsThatFolder) {
    EXPECT_EQ(macCategory("Downloads"), "descargas");
    EXPECT_EQ(macCategory("Library"), "sistema");
}

TEST(Classifier, ALibraryFileGoesByThePartsOfItsPathInOrder) {
    EXPECT_EQ(macCategory("Library/Caches/a"), "apps");
    EXPECT_EQ(macCategory("Library/Logs/a"), "sistema");
    EXPECT_EQ(macCategory("Library/Application Support/MobileSync/Backup/a"), "sistema");
    EXPECT_EQ(macCategory("Library/Application Support/App/a"), "apps");
    EXPECT_EQ(macCategory("Library/Developer/Caches/a"), "apps");
    // A part with slashes on both sides is a folder; a file of that name is none.
    EXPECT_EQ(macCategory("Library/Caches"), "sistema");
    EXPECT_EQ(macCategory("Library/Logs/Caches"), "sistema");
    EXPECT_EQ(macCategory("Library/OldCaches/a"), "sistema");
    // Parts without slashes match inside a name, the file's own too.
    EXPECT_EQ(macCategory("Library/Logs/Application Support.log"), "apps");
    EXPECT_EQ(macCategory("Library/Caches/MobileSync.db"), "sistema");
    EXPECT_EQ(macCategory("Library/Caches/My MobileSync copy/a/b"), "sistema");
}

TEST(Classifier, OutsideTheLibraryThePartsOfAPathSayNothing) {
    EXPECT_EQ(macCategory("work/Caches/a.mp3"), "musica");
    EXPECT_EQ(macCategory("Documents/MobileSync/a"), "docs");
}

TEST(Classifier, NestedFoldersGoByTheOrderOfTrial) {
    const std::string userDirs =
        "XDG_DOCUMENTS_DIR=\"$HOME/Docs\"\n"
        "XDG_PICTURES_DIR=\"$HOME/Docs/Pictures\"\n"
        "XDG_MUSIC_DIR=\"$HOME/Docs/Pictures/Music\"\n";
    const HomeLayout layout = HomeLayout::freedesktop(
        "/home/ana", [](const std::string&) { return std::nullopt; }, userDirs);
    Descent descent(layout);
    EXPECT_EQ(descent.categoryOf("/home/ana/Docs/a.mp3"), "docs");
    EXPECT_EQ(descent.categoryOf("/home/ana/Docs/Pictures/a.mp3"), "fotos");
    EXPECT_EQ(descent.categoryOf("/home/ana/Docs/Pictures/Music/a.mp3"), "fotos");
}

TEST(Classifier, OnAFreeDesktopWhatApplicationsKeepIsTheirs) {
    const HomeLayout layout = HomeLayout::freedesktop(
        "/home/ana", [](const std::string&) { return std::nullopt; }, "");
    PlaceTable places;
    const Classifier classifier(layout, places);
    const std::string root = "/home/ana/.local/share";
    const auto folder =
        FolderReference::root(root, 0, classifier.markOfRoot(root), places.find(root));
    EXPECT_EQ(classifier.categoryOf(*folder, "a.mp3", nullptr), Category::applications);
}

TEST(Classifier, AgreesWithThePlainRulesOnThousandsOfPaths) {
    HomeLayout layout = HomeLayout::macOS("/Users/ana");
    // A rule that spans two folders and the beginning of a name.
    layout.libraryRules.push_back({"Logs/App", "docs"});
    constexpr std::array names{"Library",
                               "Caches",
                               "Application Support",
                               "MobileSync",
                               "Logs",
                               "Application",
                               "Pictures",
                               "Music",
                               "Documents",
                               "Preferences",
                               "Containers",
                               "a",
                               "Group Containers",
                               "Applications",
                               "b.mp3",
                               "MobileSync.jpg",
                               "WebKit",
                               "n.mov",
                               "Saved Application State"};
    Descent descent(layout);
    std::minstd_rand random(20240501);
    std::map<std::string_view, int> met;
    for (int round = 0; round < 20'000; ++round) {
        std::string path = layout.home + (round % 2 == 0 ? "/Library" : "");
        const auto length = 1 + random() % 6;
        for (unsigned index = 0; index < length; ++index) {
            path += std::string("/") + names.at(random() % names.size());
        }
        const std::string_view category = descent.categoryOf(path);
        ASSERT_EQ(category, categoryOfPath(layout, path)) << path;
        ++met[category];
    }
    EXPECT_EQ(met.size(), 5u) << "downloads aside, the paths were to lead to every category";
}

}  // namespace
}  // namespace velto
