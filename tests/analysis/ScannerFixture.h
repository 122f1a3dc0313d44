#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>

#include "analysis/PermissionService.h"
#include "analysis/ScannerService.h"
#include "support/FakeDirectoryReader.h"
#include "support/TestPlatform.h"

namespace velto {

/// A scanner over a file system of the test's making, in which every size and date is exact. The
/// home exists there from the start.
struct ScannerFixture : testing::Test {
    ScannerFixture() { reader.folder(home); }

    FakeDirectoryReader::Node& file(std::string_view path, std::int64_t allocatedSize,
                                    std::int64_t logicalSize = 0) {
        return reader.file(at(path), allocatedSize, logicalSize);
    }
    FakeDirectoryReader::Node& folder(std::string_view path) { return reader.folder(at(path)); }
    std::string at(std::string_view path) const { return home + "/" + std::string(path); }

    AnalysisOutput scan(const std::vector<std::string>& excluded = {}) {
        return scanner.scan(excluded, cancelled, progress);
    }

    /// The one big file of the last walk.
    BigFile onlyBigFile() const {
        if (scanner.catTop.size() != 1 || scanner.catTop.begin()->second.size() != 1) {
            ADD_FAILURE() << "not exactly one big file";
            return {};
        }
        return scanner.catTop.begin()->second.front();
    }

    TestPlatform machine;
    FakeDirectoryReader& reader = install<FakeDirectoryReader>(machine.platform.directories);
    const std::string home = machine.home.path();
    PermissionService permissions{machine.platform};
    ScannerService scanner{machine.platform, permissions, 2};
    CancellationFlag cancelled;
    ScannerService::Progress progress;
};

}  // namespace velto
