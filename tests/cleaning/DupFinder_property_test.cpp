// Whatever is read in which order, and however little of it: the result is that of comparing every
// file with every other one.

#include <algorithm>
#include <atomic>
#include <map>
#include <random>
#include <set>
#include <string>

#include <gmock/gmock.h>

#include "cleaning/DigestStore.h"
#include "cleaning/DupFinder.h"
#include "platform/Digest.h"
#include "support/FakeFileContents.h"
#include "support/exhaustive.h"
#include "support/fakes.h"

namespace velto {
namespace {

using Groups = std::vector<std::pair<std::string, std::vector<std::string>>>;  // digest, paths

constexpr std::int64_t oneMebibyte = 1024 * 1024;

/// Files of few lengths that begin alike up to places of all kinds, some of them with several
/// names, some of which cannot be read to their end.
class RandomFiles {
public:
    explicit RandomFiles(std::uint32_t seed) : random_(seed) {
        const std::size_t count = 4 + below(9);
        for (std::size_t index = 0; index < count; ++index)
            add("/" + std::to_string(index));
    }

    std::size_t below(std::size_t bound) { return random_() % bound; }
    bool oneIn(std::size_t bound) { return below(bound) == 0; }

    /// By comparing contents as they are; files for which `isLeftOut` says so do not count.
    Groups naive() const {
        std::map<std::string, std::vector<std::string>> byContent;
        for (const FileRecord& record : records) {
            const auto& file = contents.files.at(record.path);
            if (record.size < DupFinder::smallestSize || isLeftOut(file)) continue;
            byContent[file.content].push_back(record.path);
        }
        Groups groups;
        for (const auto& [content, paths] : byContent) {
            if (paths.size() < 2) continue;
            const auto digest = makeDigest(DigestKind::sha256);
            digest->update(std::as_bytes(std::span(content)));
            groups.emplace_back(digest->finish(), paths);
        }
        std::ranges::sort(groups, {}, [&](const auto& group) { return place(group.second[0]); });
        return groups;
    }

    FakeFileContents contents;
    std::vector<FileRecord> records;

private:
    static bool isLeftOut(const FakeFileContents::File& file) {
        return file.openError != 0 || file.readError != 0 || file.sizeAfterReads >= 0 ||
               file.endsAt < file.content.size() || file.opensBeforeItIsGone >= 0;
    }

    std::size_t place(const std::string& path) const {
        return static_cast<std::size_t>(std::ranges::find(records, path, &FileRecord::path) -
                                        records.begin());
    }

    /// Around the places where something ends or begins.
    std::int64_t anyPlace(std::int64_t length) {
        constexpr std::int64_t places[] = {0,
                                           4096,
                                           oneMebibyte,
                                           1'000'000,
                                           2 * oneMebibyte,
                                           3 * oneMebibyte,
                                           4 * oneMebibyte,
                                           5 * oneMebibyte,
                                           6 * oneMebibyte};
        std::int64_t chosen = places[below(std::size(places))];
        if (oneIn(4)) chosen = length / 2;
        if (oneIn(4)) chosen = length;
        if (oneIn(4)) chosen = static_cast<std::int64_t>(below(static_cast<std::size_t>(length)));
        chosen += static_cast<std::int64_t>(below(3)) - 1;
        return std::clamp<std::int64_t>(chosen, 0, length - 1);
    }

    void add(const std::string& path) {
        constexpr std::int64_t lengths[] = {1'000'000, 1'000'001, 4 * oneMebibyte,
                                            4 * oneMebibyte + 1, 6 * oneMebibyte + 5};
        const std::int64_t length = lengths[oneIn(2) ? 4 : below(std::size(lengths))];
        FakeFileContents::File file;
        file.content.assign(static_cast<std::size_t>(length), 'a');
        for (std::size_t change = below(3); change > 0; --change) {
            file.content[static_cast<std::size_t>(anyPlace(length))] =
                static_cast<char>('b' + below(2));
        }
        file.stamp = FileStamp{.identity = {.device = 1, .number = 1'000 + records.size()},
                               .length = length,
                               .modified = 1'000'000'000'000,
                               .changed = 1'000'000'000'000};
        if (!records.empty() && oneIn(5)) {
            // Another name of a file, or a copy of it.
            const auto& other = contents.files.at(records[below(records.size())].path);
            const auto stamp = oneIn(2) ? other.stamp : file.stamp;
            file.content = other.content;
            file.stamp = stamp;
            file.stamp->length = static_cast<std::int64_t>(file.content.size());
        }
        spoil(file);
        if (oneIn(3)) file.place = FilePlace{1 + below(2), oneIn(2), below(100)};
        records.push_back({path, static_cast<std::int64_t>(file.content.size())});
        contents.files[path] = std::move(file);
    }

    void spoil(FakeFileContents::File& file) {
        const auto length = static_cast<std::int64_t>(file.content.size());
        file.interruptions = oneIn(8) ? 2 : 0;
        if (oneIn(8)) file.longestRead = 100'000;
        switch (below(30)) {
            case 0:
                file.openError = EACCES;
                break;
            case 1:
                file.readError = EIO;
                file.readErrorFrom = anyPlace(length);
                break;
            case 2:
                file.sizeAfterReads = anyPlace(length);
                break;
            case 3:
                file.endsAt = static_cast<std::size_t>(anyPlace(length));
                break;
            case 4:
                file.opensBeforeItIsGone = static_cast<int>(below(6));
                break;
            default:
                break;
        }
        // What cannot be opened may have another name that can; all else is the same for all names.
        if (file.readError != 0 || file.sizeAfterReads >= 0 || file.endsAt != SIZE_MAX)
            file.stamp->identity.number += 1'000'000 + records.size();
    }

    std::mt19937 random_;
};

/// Without those that were gone at some time: the search may have been through with them before.
Groups settled(const RandomFiles& files, const DupFinder::Result& result) {
    Groups groups;
    for (const auto& group : result.groups) {
        std::vector<std::string> paths;
        const std::string& content = files.contents.files.at(group.paths[0]).content;
        for (const std::string& path : group.paths) {
            const auto& file = files.contents.files.at(path);
            EXPECT_EQ(file.content, content) << path;
            if (file.opensBeforeItIsGone < 0) paths.push_back(path);
        }
        if (paths.size() > 1) groups.emplace_back(group.hash, paths);
    }
    return groups;
}

struct DupFinderProperty : testing::TestWithParam<std::uint32_t> {
    FakeClock clock;
};

TEST_P(DupFinderProperty, ItFindsWhatComparingAllWithAllFinds) {
    RandomFiles files(GetParam());
    DigestStore store;
    const std::size_t threads = 1 + files.below(4);
    DigestStore* const known = files.oneIn(2) ? &store : nullptr;
    const DupFinder finder(clock, files.contents, threads, known);
    const auto first = finder.find(files.records);
    EXPECT_EQ(settled(files, first), files.naive());
    EXPECT_TRUE(first.left.empty());
    EXPECT_EQ(settled(files, finder.find(files.records)), files.naive()) << "a second time";
}

TEST_P(DupFinderProperty, WhereverItIsStoppedTheRestIsFoundAmongWhatIsLeft) {
    RandomFiles files(GetParam());
    const Groups all = files.naive();
    DigestStore store;
    DigestStore* const known = files.oneIn(2) ? &store : nullptr;
    const DupFinder finder(clock, files.contents, 1 + files.below(4), known);
    std::atomic<std::size_t> asked = 0;
    const std::size_t enough = files.below(60);
    const auto cut = finder.find(files.records, [&] { return ++asked > enough; });
    Groups found = settled(files, cut);
    std::set<std::string> seen;
    for (const auto& group : cut.groups)
        seen.insert(group.paths.begin(), group.paths.end());
    for (const FileRecord& left : cut.left)
        EXPECT_FALSE(seen.contains(left.path)) << left.path;
    for (const auto& group : settled(files, finder.find(cut.left)))
        found.push_back(group);
    std::ranges::sort(found);
    Groups expected = all;
    std::ranges::sort(expected);
    EXPECT_EQ(found, expected);
}

INSTANTIATE_TEST_SUITE_P(Seeds, DupFinderProperty, testing::Range(0u, isExhaustive() ? 60u : 20u));

}  // namespace
}  // namespace velto
