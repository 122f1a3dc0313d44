#include <cerrno>

#include "ScannerFixture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

struct Scanner : ScannerFixture {};

TEST_F(Scanner, AnEmptyHomeCountsNothing) {
    const AnalysisOutput output = scan();
    EXPECT_EQ(scanner.filesScanned, 0);
    EXPECT_EQ(scanner.bytesScanned, 0);
    EXPECT_THAT(scanner.fileList, IsEmpty());
    EXPECT_THAT(scanner.catBytes, IsEmpty());
    EXPECT_THAT(scanner.catTop, IsEmpty());
    EXPECT_THAT(scanner.catFiles, IsEmpty());
    EXPECT_THAT(output.cats, SizeIs(6));
    EXPECT_TRUE(
        machine.log.holds("Velto ▶ recorrido completo: 0 archivos, candidatos duplicado: 0"));
    EXPECT_TRUE(machine.log.holds("Velto ▶ post-proceso listo (duplicados: 0 grupos)"));
}

TEST_F(Scanner, BytesAndFilesAddUpByCategory) {
    file("Music/a.mp3", 4096);
    file("Music/b/c.jpg", 8192);
    file("Movies/film.mov", 100);
    file("notes.txt", 1);
    scan();
    EXPECT_EQ(scanner.filesScanned, 4);
    EXPECT_EQ(scanner.bytesScanned, 4096 + 8192 + 100 + 1);
    EXPECT_THAT(scanner.catBytes,
                ElementsAre(Pair("docs", 1), Pair("fotos", 100), Pair("musica", 12288)));
    EXPECT_THAT(scanner.catFiles,
                ElementsAre(Pair("docs", 1), Pair("fotos", 1), Pair("musica", 2)));
}

TEST_F(Scanner, ASecondWalkStartsFromNothing) {
    file("Music/a.mp3", 400'000'000);
    scan();
    scan();
    EXPECT_EQ(scanner.filesScanned, 1);
    EXPECT_THAT(scanner.fileList, SizeIs(1));
    EXPECT_EQ(onlyBigFile().name, "a.mp3");
}

TEST_F(Scanner, TheAllocatedSizeCountsAndTheLogicalOneOnlyInItsAbsence) {
    file("Music/sparse", 4096, 9'000'000);
    file("Music/unknown", -1, 500);
    scan();
    EXPECT_EQ(scanner.bytesScanned, 4096 + 500);
    EXPECT_EQ(scanner.filesScanned, 2);
}

TEST_F(Scanner, AFileThatTakesNoSpaceIsNotCounted) {
    file("Music/empty", 0);
    file("Music/inline", 0, 60);
    file("Music/nothing", -1, 0);
    scan();
    EXPECT_EQ(scanner.filesScanned, 0);
    EXPECT_THAT(scanner.catFiles, IsEmpty());
}

TEST_F(Scanner, OnlyMoreThanAMillionBytesAreADuplicateCandidate) {
    file("Music/exact", 1'000'000);
    file("Music/more", 1'000'001, 5'000'000);
    scan();
    EXPECT_THAT(scanner.fileList, ElementsAre(FileRecord{at("Music/more"), 1'000'001, 5'000'000}));
    EXPECT_TRUE(
        machine.log.holds("Velto ▶ recorrido completo: 2 archivos, candidatos duplicado: 1"));
}

TEST_F(Scanner, AFileOfExactlyThreeHundredMillionBytesIsABigFile) {
    file("Music/less.mp3", 299'999'999);
    file("Music/exact.mp3", 300'000'000);
    scan();
    EXPECT_EQ(onlyBigFile().name, "exact.mp3");
    EXPECT_EQ(onlyBigFile().gb, 0.3);
    EXPECT_EQ(onlyBigFile().path, at("Music/exact.mp3"));
}

TEST_F(Scanner, ABigFilesSizeIsRoundedToOneDecimalHalvesUp) {
    file("Music/a", 449'999'999);
    file("Music/b", 450'000'000);
    file("Music/c", 1'250'000'000);
    scan();
    const auto& list = scanner.catTop.at("musica");
    ASSERT_THAT(list, SizeIs(3));
    EXPECT_EQ(list[0].gb, 0.4);
    EXPECT_EQ(list[1].gb, 0.5);
    EXPECT_EQ(list[2].gb, 1.3);
}

TEST_F(Scanner, ABigFilesKindGoesByItsCategory) {
    machine.grantAccess();
    file("Pictures/a", 300'000'000);
    file("Music/a", 300'000'000);
    file("Downloads/a", 300'000'000);
    file("Documents/a", 300'000'000);
    file("Applications/a", 300'000'000);
    file("Library/Logs/a", 300'000'000);
    scan();
    std::map<std::string, std::string> kinds;
    for (const auto& [category, list] : scanner.catTop)
        kinds[category] = list.at(0).kind;
    EXPECT_THAT(kinds, UnorderedElementsAre(Pair("fotos", "video"), Pair("musica", "video"),
                                            Pair("descargas", "descarga"), Pair("docs", "doc"),
                                            Pair("apps", "app"), Pair("sistema", "doc")));
}

TEST_F(Scanner, TheLastUseIsTheAccessElseTheModification) {
    const double now = machine.clock.time;
    auto& node = file("Music/a", 300'000'000);
    const auto lastUse = [&](double accessed, double modified) {
        node.accessed = accessed;
        node.modified = modified;
        scan();
        return std::pair(onlyBigFile().last, onlyBigFile().lastN);
    };
    EXPECT_THAT(lastUse(now - 45_days, now), Pair("hace 1 mes", 45));
    EXPECT_THAT(lastUse(now - 400_days, now), Pair("hace 1 año", 400));
    EXPECT_THAT(lastUse(now - 800_days, now), Pair("hace 2 años", 800));
    EXPECT_THAT(lastUse(0, now - 36 * 3600 - 1), Pair("ayer", 2));
    EXPECT_THAT(lastUse(now + 5_days, now), Pair("hoy", 0));
    EXPECT_THAT(lastUse(0, 0), Pair("hace 2024 años", 738'840));
}

TEST_F(Scanner, ABigFileInAProtectedPlaceSaysSo) {
    file("work/Mailbox copy", 300'000'000);
    scan();
    EXPECT_TRUE(onlyBigFile().isProtected);
    reader.folder(at("work")).children.clear();
    file("work/mailbox copy", 300'000'000);
    scan();
    EXPECT_FALSE(onlyBigFile().isProtected);
}

TEST_F(Scanner, ListsAreInPathOrderWhateverTheThreads) {
    for (const char* name : {"z/1", "a/2", "m", "a/1", "b/c/d/1"}) {
        file("Music/" + std::string(name), 300'000'000);
    }
    scan();
    std::vector<std::string> paths;
    for (const BigFile& big : scanner.catTop.at("musica"))
        paths.push_back(big.path);
    EXPECT_THAT(paths, ElementsAre(at("Music/a/1"), at("Music/a/2"), at("Music/b/c/d/1"),
                                   at("Music/m"), at("Music/z/1")));
    std::vector<std::string> candidates;
    for (const FileRecord& record : scanner.fileList)
        candidates.push_back(record.path);
    EXPECT_EQ(candidates, paths);
}

TEST_F(Scanner, UnreadableItemsAreSkippedAndReportedOnce) {
    file("Music/a", 10);
    folder("Music/closed").openError = EACCES;
    folder("Music/broken").listError = EIO;
    reader.entry(at("Music/gone"), EntryKind::unreadable);
    scan();
    EXPECT_EQ(scanner.filesScanned, 1);
    EXPECT_TRUE(machine.log.holds("Velto escáner: 3 elementos no legibles (omitidos)"));
}

TEST_F(Scanner, NoLineAboutUnreadableItemsWhenThereAreNone) {
    scan();
    for (const std::string& line : machine.log.lines()) {
        EXPECT_EQ(line.find("no legibles"), std::string::npos) << line;
    }
}

TEST_F(Scanner, ANameThatIsNotUtf8CountsAndShowsItsBadBytes) {
    file("Music/a\xFF.mp3", 300'000'000);
    scan();
    EXPECT_EQ(onlyBigFile().name, "a\xEF\xBF\xBD.mp3");
    EXPECT_EQ(onlyBigFile().path, at("Music/a\xFF.mp3")) << "and is acted on by all of them";
    ASSERT_THAT(scanner.fileList, SizeIs(1));
    EXPECT_EQ(scanner.fileList[0].path, at("Music/a\xFF.mp3"));
}

TEST_F(Scanner, HiddenFilesAndFoldersAreNotCounted) {
    file(".profile", 10);
    file(".config/a", 10);
    file("Music/.hidden/a", 10);
    folder("Music/flagged").hiddenFlag = true;
    file("Music/flagged/a", 10);
    file("Music/shown", 10);
    scan();
    EXPECT_EQ(scanner.filesScanned, 1);
}

TEST_F(Scanner, TheLibraryIsWalkedThoughItIsFlaggedHidden) {
    folder("Library").hiddenFlag = true;
    file("Library/Caches/a", 10);
    scan();
    EXPECT_THAT(scanner.catBytes, ElementsAre(Pair("apps", 10)));
}

TEST_F(Scanner, LinksAreNotFollowed) {
    file("Music/a", 10);
    reader.entry(at("Music/link"), EntryKind::symbolicLink);
    file("Music/link/b", 10);
    scan();
    EXPECT_EQ(scanner.filesScanned, 1);
}

TEST_F(Scanner, AHomeThatCannotBeOpenedEndsTheProgramWithALine) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    reader.folder(home).openError = EACCES;
    EXPECT_EXIT(scan(), testing::ExitedWithCode(1), "home folder .* cannot be read");
}

}  // namespace
}  // namespace velto
