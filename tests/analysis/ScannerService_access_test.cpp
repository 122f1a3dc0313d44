#include "ScannerFixture.h"

namespace velto {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::SizeIs;

/// What the walk keeps out of, with and without Full Disk Access.
struct ScannerAccess : ScannerFixture {
    void useFreeDesktop() {
        machine.platform.layout = HomeLayout::freedesktop(
            home, [](const std::string&) { return std::nullopt; }, "");
    }
};

TEST_F(ScannerAccess, WithoutAccessProtectedFoldersAreNotOpenedAndAreListed) {
    file("Desktop/a", 10);
    file("Documents/a", 10);
    file("Library/Mail/a", 10);
    file("Pictures/Photos Library.photoslibrary/a", 10);
    file("Library/Application Support/MobileSync/a", 10);
    file("Library/Containers/a/b", 10);
    file("Library/Caches/familycircled/a", 10);
    file("Library/Caches/other/a", 10);
    const AnalysisOutput output = scan();
    EXPECT_EQ(scanner.filesScanned, 1);
    EXPECT_THAT(reader.readFolders(), Not(Contains(at("Desktop"))));
    EXPECT_THAT(reader.readFolders(), Not(Contains(at("Library/Mail"))));
    EXPECT_THAT(output.protectedLocations,
                ElementsAre("desktop", "documents", "downloads", "photos", "icloud", "mail",
                            "messages", "safari", "calendars", "contacts", "iphone"));
}

TEST_F(ScannerAccess, WithAccessTheyAreWalkedAndNothingIsListed) {
    machine.grantAccess();
    file("Desktop/a", 10);
    file("Library/Mail/a", 10);
    file("Pictures/Photos Library.photoslibrary/a", 10);
    file("Library/Containers/a/b", 10);
    const AnalysisOutput output = scan();
    EXPECT_EQ(scanner.filesScanned, 4);
    EXPECT_THAT(output.protectedLocations, IsEmpty());
}

TEST_F(ScannerAccess, WithoutAccessMediaLibrariesAreLeftWholeWhereverTheyLie) {
    file("Pictures/Old.photoslibrary/a.jpg", 10);
    file("work/Mine.MUSICLIBRARY/a.mp3", 10);
    file("Movies/TV.tvlibrary/a.mov", 10);
    file("Movies/library/a.mov", 10);
    file("Movies/a.otherlibrary/a.mov", 10);
    file("Movies/file.tvlibrary", 10);
    scan();
    EXPECT_EQ(scanner.filesScanned, 2);
    machine.grantAccess();
    scan();
    EXPECT_EQ(scanner.filesScanned, 6);
}

TEST_F(ScannerAccess, ExcludedFoldersAreNotEnteredButTheirNamesakesAre) {
    file("Music/a", 10);
    file("Musicals/b", 10);
    file("work/Music/c", 10);
    scan({at("Music")});
    EXPECT_EQ(scanner.filesScanned, 2);
    EXPECT_THAT(reader.readFolders(), Not(Contains(at("Music"))));
}

TEST_F(ScannerAccess, AnExcludedFileIsNotCounted) {
    file("Music/a", 10);
    file("Music/ab", 20);
    scan({at("Music/a")});
    EXPECT_EQ(scanner.bytesScanned, 20);
}

TEST_F(ScannerAccess, ExcludingTheHomeLeavesNothing) {
    file("Music/a", 10);
    scan({home});
    EXPECT_EQ(scanner.filesScanned, 0);
}

TEST_F(ScannerAccess, TheProgramsOwnFoldersAreNeverWalked) {
    machine.grantAccess();
    file("Library/Application Support/Velto/Trash/a", 10);
    file("Library/Mobile Documents/com~apple~CloudDocs/Velto/a", 10);
    file("Library/Mobile Documents/com~apple~CloudDocs/other", 10);
    scan();
    EXPECT_EQ(scanner.filesScanned, 1);
}

TEST_F(ScannerAccess, AFreeDesktopHasNoGateAndItsHiddenLibrariesCount) {
    useFreeDesktop();
    file("Desktop/a", 1);
    file("Videos/Mine.tvlibrary/a", 10);
    file(".cache/app/a", 100);
    file(".local/share/app/a", 1'000);
    file(".config/app/a", 10'000);
    file(".ssh/key", 100'000);
    file(".local/other/a", 1'000'000);
    const AnalysisOutput output = scan();
    EXPECT_THAT(scanner.catBytes,
                ElementsAre(Pair("apps", 1'111'100), Pair("docs", 1), Pair("fotos", 10)));
    EXPECT_THAT(output.protectedLocations, IsEmpty());
    for (const std::string& line : machine.log.lines()) {
        EXPECT_EQ(line.find("permiso"), std::string::npos) << line;
        EXPECT_EQ(line.find("no legibles"), std::string::npos) << "missing folders are no fault";
    }
}

TEST_F(ScannerAccess, AFreeDesktopsTrashAndTheProgramsDataAreNotCounted) {
    useFreeDesktop();
    file(".local/share/Trash/files/a", 10);
    file(".local/share/Velto/Trash/a", 10);
    file(".local/share/Veltor/a", 1);
    scan();
    EXPECT_EQ(scanner.bytesScanned, 1);
}

TEST_F(ScannerAccess, AnExclusionAboveAHiddenLibraryKeepsTheWalkOutOfIt) {
    useFreeDesktop();
    file(".local/share/app/a", 10);
    file(".cache/a", 1);
    scan({at(".local")});
    EXPECT_EQ(scanner.bytesScanned, 1);
}

TEST_F(ScannerAccess, AHiddenLibraryThatIsALinkIsNotFollowed) {
    useFreeDesktop();
    reader.entry(at(".cache"), EntryKind::symbolicLink);
    file(".cache/a", 10);
    scan();
    EXPECT_EQ(scanner.filesScanned, 0);
}

TEST_F(ScannerAccess, ARootThatAnotherRootReachesIsCountedOnce) {
    useFreeDesktop();
    machine.platform.layout.walkRoots.push_back(at("visible"));
    file("visible/a", 10);
    scan();
    EXPECT_EQ(scanner.filesScanned, 1);
}

}  // namespace
}  // namespace velto
