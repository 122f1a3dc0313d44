#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "analysis/PermissionService.h"
#include "analysis/ScannerService.h"
#include "analysis/again/WalkKeeper.h"
#include "support/FakeDirectoryReader.h"
#include "support/TestPlatform.h"

namespace velto {

/// All that an analysis makes of a walk, in a form that tests can compare and print.
struct WalkResult {
    struct Folder {
        std::string path;
        FolderState state{};
        std::uint64_t inode = 0;
        std::int64_t ownBytes = 0;
        std::uint32_t ownFiles = 0;
        std::uint32_t ownUnreadable = 0;
        std::uint32_t ownLatest = 0;
        bool isListedWhole = true;
        std::int64_t bytes = 0;
        std::uint32_t files = 0;
        std::uint32_t unreadable = 0;
        std::uint32_t latest = 0;

        bool operator==(const Folder&) const = default;
    };
    struct Candidate {
        std::string path;
        std::int64_t size = 0;
        std::int64_t length = 0;

        bool operator==(const Candidate&) const = default;
    };

    std::int64_t files = 0;
    std::int64_t bytes = 0;
    std::int64_t hiddenBytes = 0;
    std::map<std::string, std::int64_t> categoryBytes;
    std::map<std::string, std::int64_t> categoryFiles;
    std::map<std::string, std::vector<BigFile>> bigFiles;
    std::vector<Candidate> candidates;
    std::vector<Folder> folders;
    std::vector<std::string> unreadableLines;  // of the log
    std::vector<Cat> categories;
    std::vector<BigFile> shown;
    std::vector<DupGroup> duplicates;
};

inline WalkResult resultOf(const ScannerService& scanner, const AnalysisOutput& output) {
    WalkResult result{.files = scanner.filesScanned,
                      .bytes = scanner.bytesScanned,
                      .hiddenBytes = scanner.hiddenBytes(),
                      .categoryBytes = scanner.catBytes,
                      .categoryFiles = scanner.catFiles,
                      .bigFiles = scanner.catTop,
                      .categories = output.cats,
                      .shown = output.files,
                      .duplicates = output.dupGroups};
    for (const FileRecord& file : scanner.fileList)
        result.candidates.push_back({file.path, file.size, file.length});
    const FolderTree& tree = *scanner.folders();
    for (FolderTree::Index index = 0; index < tree.size(); ++index) {
        const TreeFolder& folder = tree[index];
        result.folders.push_back({.path = tree.path(index),
                                  .state = folder.own.state,
                                  .inode = folder.own.inode,
                                  .ownBytes = folder.own.ownBytes,
                                  .ownFiles = folder.own.ownFiles,
                                  .ownUnreadable = folder.own.unreadable,
                                  .ownLatest = folder.own.latest,
                                  .isListedWhole = folder.own.isListedWhole,
                                  .bytes = folder.bytes,
                                  .files = folder.files,
                                  .unreadable = folder.unreadable,
                                  .latest = folder.latest});
    }
    return result;
}

inline void expectEqual(const WalkResult& again, const WalkResult& whole) {
    EXPECT_EQ(again.files, whole.files);
    EXPECT_EQ(again.bytes, whole.bytes);
    EXPECT_EQ(again.hiddenBytes, whole.hiddenBytes);
    EXPECT_EQ(again.categoryBytes, whole.categoryBytes);
    EXPECT_EQ(again.categoryFiles, whole.categoryFiles);
    EXPECT_EQ(again.bigFiles, whole.bigFiles);
    EXPECT_EQ(again.candidates, whole.candidates);
    EXPECT_EQ(again.unreadableLines, whole.unreadableLines);
    EXPECT_EQ(again.categories, whole.categories);
    EXPECT_EQ(again.shown, whole.shown);
    EXPECT_EQ(again.duplicates, whole.duplicates);
    EXPECT_EQ(again.folders.size(), whole.folders.size());
    const std::size_t common = std::min(again.folders.size(), whole.folders.size());
    for (std::size_t index = 0; index < common; ++index) {
        if (again.folders[index] == whole.folders[index]) continue;
        const auto& one = again.folders[index];
        const auto& other = whole.folders[index];
        ADD_FAILURE() << "folder " << one.path << ": own " << one.ownBytes << " in " << one.ownFiles
                      << ", unreadable " << one.ownUnreadable << ", latest " << one.ownLatest
                      << ", state " << static_cast<int>(one.state) << ", all " << one.bytes
                      << " in " << one.files << "; in a whole walk " << other.path << ": own "
                      << other.ownBytes << " in " << other.ownFiles << ", unreadable "
                      << other.ownUnreadable << ", latest " << other.ownLatest << ", state "
                      << static_cast<int>(other.state) << ", all " << other.bytes << " in "
                      << other.files;
        break;
    }
}

/// A scanner over a file system of the test's making, on a machine that tells of changes.
struct AgainMachine {
    AgainMachine() {
        machine.changes.hasHistory = true;
        machine.clock.time = 1'700'000'000;
        reader.folder(home);
    }

    struct Scanned {
        WalkResult result;
        WalkDoubt doubt = WalkDoubt::none;
        std::vector<std::string> read;  // folders, by path
    };

    /// An analysis; what it leaves for the next one is saved.
    Scanned scan(const std::vector<std::string>& excluded = {}) {
        ScannerService scanner(machine.platform, permissions, 2);
        const Scanned scanned = scanWith(scanner, excluded);
        if (const auto kept = scanner.keptWalk()) WalkKeeper::save(machine.platform, *kept);
        return scanned;
    }

    /// One that reads everything and leaves nothing, as on a system that tells of no changes.
    WalkResult wholeScan(const std::vector<std::string>& excluded = {}) {
        const bool before = std::exchange(machine.changes.hasHistory, false);
        ScannerService scanner(machine.platform, permissions, 2);
        const WalkResult result = scanWith(scanner, excluded).result;
        machine.changes.hasHistory = before;
        EXPECT_EQ(scanner.keptWalk(), nullptr);
        return result;
    }

    std::string at(std::string_view path) const { return home + "/" + std::string(path); }

    TestPlatform machine;
    FakeDirectoryReader& reader = install<FakeDirectoryReader>(machine.platform.directories);
    const std::string home = machine.home.path();
    PermissionService permissions{machine.platform};

private:
    Scanned scanWith(ScannerService& scanner, const std::vector<std::string>& excluded) {
        machine.log.clear();
        reader.forgetRead();
        const AnalysisOutput output = scanner.scan(excluded, CancellationFlag(), nullptr);
        Scanned scanned{.result = resultOf(scanner, output),
                        .doubt = scanner.doubt(),
                        .read = reader.readFolders()};
        for (const std::string& line : machine.log.lines()) {
            if (line.contains("no legibles")) scanned.result.unreadableLines.push_back(line);
        }
        return scanned;
    }
};

}  // namespace velto
