#include "analysis/post_processing.h"

#include <atomic>
#include <clocale>
#include <locale>
#include <thread>

#include <gmock/gmock.h>

#include "support/FakeFileContents.h"
#include "support/TestPlatform.h"
#include "support/volumes.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<BigFile> bigFiles(const std::string& prefix, int count, double gb) {
    std::vector<BigFile> files(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        files[static_cast<std::size_t>(index)].name = prefix + std::to_string(index);
        files[static_cast<std::size_t>(index)].gb = gb;
    }
    return files;
}

TEST(PostProcessing, AVolumeThatSaysNothingCountsAsZero) {
    FakeVolumeInfo volumes;
    volumes.total = std::nullopt;
    volumes.available = std::nullopt;
    EXPECT_EQ(volumeFigures(volumes, "/").total, 0);
    EXPECT_EQ(volumeFigures(volumes, "/").free, 0);
    volumes.total = 500'000'000'000;
    volumes.available = 1'500'000'000;
    EXPECT_EQ(volumeFigures(volumes, "/").total, 500);
    EXPECT_EQ(volumeFigures(volumes, "/").free, 1.5);
}

TEST(PostProcessing, TheSystemGetsTheUsedSpaceThatTheWalkDidNotSee) {
    EXPECT_EQ(systemRemainder({.total = 500, .free = 100}, 150'000'000'000), 250'000'000'000);
}

TEST(PostProcessing, AVolumeWithLessUsedThanCountedLeavesTheSystemNothing) {
    EXPECT_EQ(systemRemainder({.total = 500, .free = 490}, 20'000'000'000), 0);
    EXPECT_EQ(systemRemainder({}, 0), 0);
}

TEST(PostProcessing, AllCategoriesAppearInTheirOrderEvenWithoutFiles) {
    const auto cats = categories({{"musica", 1'250'000'000}}, {{"musica", 7}});
    std::vector<std::string> ids;
    for (const Cat& cat : cats)
        ids.push_back(cat.id);
    EXPECT_THAT(ids, ElementsAre("fotos", "apps", "docs", "descargas", "musica", "sistema"));
    EXPECT_EQ(cats[0].gb, 0);
    EXPECT_EQ(cats[0].files, 0);
    EXPECT_THAT(cats[0].sub, IsEmpty());
    EXPECT_EQ(cats[4].gb, 1.3);
    EXPECT_EQ(cats[4].files, 7);
}

TEST(PostProcessing, ACategoryCarriesItsLookAndItsComparison) {
    const auto cats = categories({}, {});
    EXPECT_EQ(cats[0], (Cat{.id = "fotos",
                            .name = "Fotos y vídeo",
                            .icon = "photo",
                            .col = "#E8355A",
                            .eq = "aprox. 150.000 fotos o un año de vídeos caseros",
                            .sub = {}}));
    EXPECT_EQ(cats[5], (Cat{.id = "sistema",
                            .name = "macOS y Datos del sistema",
                            .icon = "cpu",
                            .col = "#8B919C",
                            .eq = "el espacio esencial para que tu Mac funcione",
                            .sub = {}}));
}

TEST(PostProcessing, OfFiveHundredAndOneBigFilesTheSmallestIsDropped) {
    auto music = bigFiles("m", 250, 2.0);
    auto photos = bigFiles("p", 250, 3.0);
    auto smallest = bigFiles("smallest", 1, 0.3);
    music.insert(music.begin(), smallest.begin(), smallest.end());
    const auto files = largestFiles({{"musica", music}, {"fotos", photos}});
    ASSERT_THAT(files, SizeIs(500));
    EXPECT_EQ(files.front().name, "p0");
    EXPECT_EQ(files.back().name, "m249");
}

TEST(PostProcessing, BigFilesOfOneRoundedSizeKeepTheirOrder) {
    const auto files = largestFiles({{"fotos", bigFiles("p", 3, 1.0)}});
    EXPECT_EQ(files[0].name, "p0");
    EXPECT_EQ(files[1].name, "p1");
    EXPECT_EQ(files[2].name, "p2");
}

/// Duplicate groups over real files whose dates are the test's.
struct DuplicateGroups : testing::Test {
    std::string copy(const std::string& path, double daysOld, std::int64_t bytes = 60_MB) {
        return machine.home.file(path, bytes).lastUsed(daysOld * 86400).path();
    }
    std::vector<DupGroup> groups(std::vector<std::string> paths) {
        return duplicateGroups({{.hash = "abc", .gb = 0.1, .paths = std::move(paths)}},
                               *machine.platform.files, SystemClock().now());
    }

    TestPlatform machine;
};

TEST_F(DuplicateGroups, TheNewerOfTwoCopiesIsTheOneToKeep) {
    const auto older = copy("a.mov", 9.5, 1);
    const auto newer = copy("b.mov", 2.5, 1);
    EXPECT_EQ(groups({older, newer})[0].recommended, 1);
    EXPECT_EQ(groups({newer, older})[0].recommended, 0);
}

TEST_F(DuplicateGroups, OfCopiesFromOneDayTheFirstIsKept) {
    EXPECT_EQ(groups({copy("a.mov", 2.9, 1), copy("b.mov", 2.1, 1)})[0].recommended, 0);
}

TEST_F(DuplicateGroups, ACopyWithoutADateIsOlderThanAnyOther) {
    EXPECT_EQ(groups({machine.home.path("gone"), copy("a.mov", 4000, 1)})[0].recommended, 1);
    EXPECT_EQ(groups({machine.home.path("gone"), machine.home.path("too")})[0].recommended, 0);
}

TEST_F(DuplicateGroups, EachCopyHasItsNameAndSize) {
    const auto one = copy("a.mov", 1);
    const auto gone = machine.home.path("work/gone.mov");
    const auto group = groups({one, gone})[0];
    EXPECT_EQ(group.id, "abc");
    EXPECT_EQ(group.name, "a.mov");
    EXPECT_THAT(group.paths, ElementsAre(one, gone));
    EXPECT_THAT(group.pairs, ElementsAre(ElementsAre(ElementsAre("a.mov", "0.1")),
                                         ElementsAre(ElementsAre("gone.mov", "0.0"))));
}

/// The decimal mark of most of Europe.
class DecimalComma final : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

TEST_F(DuplicateGroups, SizesHaveAPointInEveryLocale) {
    const auto path = copy("a.mov", 1);
    // The locale takes the facet over. C's own locale is changed too where one is installed.
    const std::locale before = std::locale::global(std::locale(std::locale(), new DecimalComma));
    const std::string cBefore = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"es_ES.UTF-8", "de_DE.UTF-8", "fr_FR.UTF-8"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) break;
    }
    const std::string size = groups({path})[0].pairs[0][0][1];
    std::setlocale(LC_ALL, cBefore.c_str());
    std::locale::global(before);
    EXPECT_EQ(size, "0.1");
}

TEST_F(DuplicateGroups, ANameThatIsNotUtf8ShowsItsBadBytes) {
    if (!takesNamesOfAnyBytes(machine.home.path())) GTEST_SKIP() << "no such names here";
    const auto group = groups({copy("a\xFF.mov", 1, 1)})[0];
    EXPECT_EQ(group.name, "a\xEF\xBF\xBD.mov");
    EXPECT_EQ(group.paths[0], machine.home.path("a\xFF.mov")) << "and is acted on by all of them";
    EXPECT_EQ(group.pairs[0][0][0], "a\xEF\xBF\xBD.mov");
}

/// The whole of it, over contents that the test makes up.
struct PostProcess : testing::Test {
    AnalysisOutput process(std::int64_t unreadable = 0) {
        return postProcess(machine.platform, totals, unreadable, {"desktop", "mail"});
    }

    TestPlatform machine;
    FakeFileContents& contents = install<FakeFileContents>(machine.platform.contents);
    WalkTotals totals;
};

TEST_F(PostProcess, TheRemainderJoinsWhatTheWalkFoundOfTheSystem) {
    totals.bytesScanned = 5'000'000'000;
    totals.catBytes = {{"sistema", 2'000'000'000}, {"docs", 3'000'000'000}};
    totals.catFiles = {{"sistema", 4}, {"docs", 6}};
    machine.volumes.total = 100'000'000'000;
    machine.volumes.available = 60'000'000'000;
    const AnalysisOutput output = process();
    EXPECT_EQ(output.total, 100);
    EXPECT_EQ(output.free, 60);
    EXPECT_EQ(output.cats[5].gb, 37);
    EXPECT_EQ(output.cats[5].files, 4);
    EXPECT_EQ(output.cats[2].gb, 3);
    EXPECT_EQ(totals.catBytes.at("sistema"), 2'000'000'000) << "the raw totals stay raw";
    EXPECT_THAT(output.protectedLocations, ElementsAre("desktop", "mail"));
    EXPECT_THAT(machine.log.lines(), IsEmpty());
}

TEST_F(PostProcess, UnreadableItemsAreReported) {
    process(12);
    EXPECT_THAT(machine.log.lines(),
                ElementsAre("Velto escáner: 12 elementos no legibles (omitidos)"));
}

/// A clock that any thread may move on.
class AnyThreadsClock final : public Clock {
public:
    double now() const override { return monotonic(); }
    double monotonic() const override { return static_cast<double>(seconds.load()); }

    std::atomic<int> seconds{0};
};

TEST_F(PostProcess, TimeThatRanOutIsReportedAndWhatWasFoundIsKept) {
    auto& clock = install<AnyThreadsClock>(machine.platform.clock);
    for (const char* path : {"/a", "/b", "/c", "/d"}) {
        const std::size_t length = path[1] < 'c' ? 2'000'000 : 3'000'000;
        contents.files[path].content = std::string(length, 'x');
        totals.fileList.push_back({path, static_cast<std::int64_t>(length)});
    }
    // Time runs out in the middle of the last file, once the first two are done with.
    contents.beforeRead = [&](const std::string& path, std::int64_t offset) {
        if (path != "/d" || offset != 1024 * 1024) return;
        while (contents.bytesRead("/a") < 2'000'000 || contents.bytesRead("/b") < 2'000'000) {
            std::this_thread::yield();
        }
        clock.seconds = 13;
    };
    const AnalysisOutput output = process();
    ASSERT_THAT(output.dupGroups, SizeIs(1));
    EXPECT_THAT(output.dupGroups[0].paths, ElementsAre("/a", "/b"));
    EXPECT_THAT(machine.log.lines(),
                ElementsAre("Velto ▶ duplicados: presupuesto de tiempo agotado, se devuelve lo "
                            "comprobado"));
}

}  // namespace
}  // namespace velto
