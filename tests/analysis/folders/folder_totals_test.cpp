// The totals of every folder of made trees, beside a sum that knows nothing of the walk.

#include <fcntl.h>
#include <fts.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "analysis/PermissionService.h"
#include "analysis/ScannerService.h"
#include "platform/values/text.h"
#include "support/TestPlatform.h"
#include "support/volumes.h"

namespace velto {
namespace {

struct Sum {
    std::int64_t bytes = 0;
    std::uint32_t files = 0;

    bool operator==(const Sum&) const = default;
};

void PrintTo(const Sum& sum, std::ostream* out) {
    *out << sum.bytes << " bytes in " << sum.files << " files";
}

/// What fts(3) finds below a folder, added to every folder above it. Of a file's several names the
/// first in the byte order of paths counts.
std::map<std::string, Sum> sumsBelow(const std::string& top) {
    std::map<std::string, struct stat> found;
    std::string root = top;
    char* roots[] = {root.data(), nullptr};
    FTS* walk = fts_open(roots, FTS_PHYSICAL | FTS_NOCHDIR, nullptr);
    while (FTSENT* entry = fts_read(walk)) {
        if (entry->fts_info != FTS_DP) found.emplace(entry->fts_path, *entry->fts_statp);
    }
    fts_close(walk);

    std::map<std::string, Sum> sums;
    std::set<std::pair<dev_t, ino_t>> counted;
    for (const auto& [path, status] : found) {
        const bool isFolder = S_ISDIR(status.st_mode);
        const bool isNew = isFolder || counted.emplace(status.st_dev, status.st_ino).second;
        std::string folder = isFolder ? path : parentFolder(path);
        for (; isAtOrBelow(folder, top); folder = parentFolder(folder)) {
            Sum& sum = sums[folder];
            if (!isNew) continue;
            sum.bytes += std::int64_t{status.st_blocks} * 512;
            if (S_ISREG(status.st_mode)) ++sum.files;
        }
    }
    return sums;
}

std::map<std::string, Sum> sumsIn(const FolderTree& tree) {
    std::map<std::string, Sum> sums;
    for (FolderTree::Index index = 0; index < tree.size(); ++index)
        sums[tree.path(index)] = {tree[index].bytes, tree[index].files};
    return sums;
}

/// A tree of random form: files of any length, holes, hidden names, several names of one file,
/// links, deep chains.
class Grove {
public:
    Grove(TempHome& home, unsigned seed)
        : home_(home), random_(seed), anyBytes_(takesNamesOfAnyBytes(home.path())) {}

    void grow() {
        for (int index = 0; index < 40; ++index)
            folders_.push_back(home_.folder(inside() + name()));
        for (int index = 0; index < 150; ++index)
            addFile();
        std::string deep = "deep";
        for (int level = 0; level < 60; ++level)
            deep += "/" + std::to_string(upTo(3));
        home_.file(deep + "/end", 5'000);
    }

private:
    unsigned upTo(unsigned bound) { return static_cast<unsigned>(random_() % bound); }

    std::string name() {
        const std::array prefixes{"", ".", "a", "a-", "z ", anyBytes_ ? "\xFF" : "y", "ñ"};
        return prefixes.at(upTo(prefixes.size())) + std::to_string(++count_);
    }

    /// A folder of the home, as a path to which a name is appended.
    std::string inside() {
        if (folders_.empty() || upTo(5) == 0) return "";
        return folders_[upTo(static_cast<unsigned>(folders_.size()))].substr(home_.path().size() +
                                                                             1) +
               "/";
    }

    void addFile() {
        const std::string path = inside() + name();
        switch (upTo(6)) {
            case 0:
                home_.sparse(path, 50'000'000);
                break;
            case 1:
                home_.link(path, std::string(1 + upTo(200), 'x'));
                break;
            case 2:
                if (files_.empty()) break;
                ASSERT_EQ(::link(files_[upTo(static_cast<unsigned>(files_.size()))].c_str(),
                                 home_.path(path).c_str()),
                          0);
                break;
            default:
                files_.push_back(home_.file(path, upTo(30'000)).path());
        }
    }

    TempHome& home_;
    std::minstd_rand random_;
    bool anyBytes_;
    std::vector<std::string> folders_;
    std::vector<std::string> files_;
    int count_ = 0;
};

class FolderTotals : public testing::TestWithParam<unsigned> {};

TEST_P(FolderTotals, EqualAnIndependentSum) {
    TestPlatform machine;
    machine.grantAccess();
    Grove(machine.home, GetParam()).grow();
    const PermissionService permissions(machine.platform);
    const auto expected = sumsBelow(machine.home.path());
    EXPECT_GT(expected.size(), 90U);
    for (std::size_t threads = 1; threads <= 4; threads += 3) {
        ScannerService scanner(machine.platform, permissions, threads);
        scanner.scan({}, CancellationFlag(), nullptr);
        EXPECT_EQ(sumsIn(*scanner.folders()), expected) << threads << " threads";
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, FolderTotals, testing::Range(1U, 7U));

}  // namespace
}  // namespace velto
