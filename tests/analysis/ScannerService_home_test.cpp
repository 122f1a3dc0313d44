#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <random>

#include <gmock/gmock.h>

#include "analysis/PermissionService.h"
#include "analysis/ScannerService.h"
#include "support/TestPlatform.h"
#include "support/volumes.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::SizeIs;
using testing::UnorderedElementsAre;

/// Walks of a real home.
struct ScannerHome : testing::Test {
    struct Outcome {
        std::int64_t files;
        std::int64_t bytes;
        std::vector<FileRecord> fileList;
        std::map<std::string, std::int64_t> catBytes;
        std::map<std::string, std::vector<BigFile>> catTop;
        std::map<std::string, std::int64_t> catFiles;
        std::vector<DupGroup> groups;

        bool operator==(const Outcome&) const = default;
    };

    Outcome scan(std::size_t threads) {
        ScannerService scanner(machine.platform, permissions, threads);
        const AnalysisOutput output = scanner.scan({}, CancellationFlag(), nullptr);
        return {scanner.filesScanned, scanner.bytesScanned, scanner.fileList, scanner.catBytes,
                scanner.catTop,       scanner.catFiles,     output.dupGroups};
    }

    TestPlatform machine;
    TempHome& home = machine.home;
    PermissionService permissions{machine.platform};
};

TEST_F(ScannerHome, CountsWhatAPlainRecountFinds) {
    machine.grantAccess();
    std::minstd_rand random(7);
    constexpr std::array folders{"Music", "Documents", "Library/Caches", "work", "Desktop", "x"};
    for (int index = 0; index < 400; ++index) {
        std::string path = folders.at(random() % folders.size());
        for (auto level = random() % 5; level > 0; --level) {
            path += "/" + std::to_string(random() % 4);
        }
        home.file(path + "/f" + std::to_string(index) + ".mp3",
                  static_cast<std::int64_t>(random() % 50'000));
    }
    home.file("x/.hidden/a", 10'000);
    home.file("x/.b", 10'000);
    home.link("x/link", home.path("Music"));
    home.link("x/cycle", home.path());
    home.link("x/file link", home.path("Music/a"));

    std::int64_t files = 0;
    std::int64_t bytes = 0;
    namespace fs = std::filesystem;
    for (auto entry = fs::recursive_directory_iterator(home.path()); entry != fs::end(entry);
         ++entry) {
        struct stat status {};
        ASSERT_EQ(::lstat(entry->path().c_str(), &status), 0);
        if (entry->path().filename().string().starts_with('.')) {
            entry.disable_recursion_pending();
        } else if (S_ISREG(status.st_mode) && status.st_blocks > 0) {
            ++files;
            bytes += status.st_blocks * 512;
        }
    }
    const Outcome outcome = scan(3);
    EXPECT_GT(files, 300);
    EXPECT_EQ(outcome.files, files);
    EXPECT_EQ(outcome.bytes, bytes);
    std::int64_t sum = 0;
    for (const auto& [category, count] : outcome.catFiles)
        sum += count;
    EXPECT_EQ(sum, files);
}

TEST_F(ScannerHome, EveryRunAndEveryNumberOfThreadsGivesTheSame) {
    for (int index = 0; index < 60; ++index) {
        const std::string folder = "work/" + std::to_string(index % 12);
        home.file(folder + "/" + std::to_string(index) + ".mov", 1'100'000);
        home.file(folder + "/n/m/" + std::to_string(index) + ".mp3", 5'000);
    }
    for (int index = 0; index < 6; ++index) {
        home.text("work/same" + std::to_string(index),
                  std::string(1'500'000, static_cast<char>('a' + index % 2)));
    }
    home.file("Music/a.mp3", 310_MB);
    home.file("Music/b.mp3", 311_MB);
    const Outcome first = scan(1);
    EXPECT_THAT(first.catTop.at("musica"), SizeIs(2));
    EXPECT_THAT(first.groups, SizeIs(2));
    for (int run = 0; run < 12; ++run) {
        EXPECT_EQ(scan(static_cast<std::size_t>(1 + run % 6)), first) << "run " << run;
    }
}

TEST_F(ScannerHome, IdenticalFilesEndAsAGroupWithTheNewestRecommended) {
    machine.clock.time = SystemClock().now();
    const std::string content(2'000'000, 'x');
    home.text("work/a.mov", content).lastUsed(40_days);
    home.text("work/b.mov", content).lastUsed(3_days);
    home.text("work/c.mov", std::string(2'000'000, 'y'));
    const Outcome outcome = scan(2);
    ASSERT_THAT(outcome.groups, SizeIs(1));
    EXPECT_THAT(outcome.groups[0].paths,
                ElementsAre(home.path("work/a.mov"), home.path("work/b.mov")));
    EXPECT_EQ(outcome.groups[0].recommended, 1);
    EXPECT_TRUE(machine.log.holds("Velto ▶ post-proceso listo (duplicados: 1 grupos)"));
}

TEST_F(ScannerHome, AnAccessTimeTellsABigFilesLastUse) {
    machine.clock.time = SystemClock().now();
    home.file("Music/a.mp3", 310_MB).lastUsed(45.9 * 86400);
    const Outcome outcome = scan(1);
    EXPECT_EQ(outcome.catTop.at("musica").at(0).last, "hace 1 mes");
    EXPECT_EQ(outcome.catTop.at("musica").at(0).lastN, 46);
    // Nothing that the analysis does counts as a use.
    EXPECT_EQ(scan(1).catTop, outcome.catTop);
}

TEST_F(ScannerHome, NamesOfAnyBytesAreCounted) {
    const bool anyBytes = takesNamesOfAnyBytes(home.path());
    if (anyBytes) home.file("work/\xFF\xFE.mp3", 5'000);
    home.file("work/line\nbreak.mp3", 5'000);
    home.file("work/" + std::string(255, 'n'), 5'000);
    EXPECT_EQ(scan(2).files, anyBytes ? 3 : 2);
}

}  // namespace
}  // namespace velto
