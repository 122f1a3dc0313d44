// What has grown between two analyses of 200,000 folders: `bench_growth FOLDER ROUNDS` prints, for
// each round, the milliseconds of comparing two stored snapshots (reading them included), of
// comparing them once they are read, and of keeping one (making, writing, syncing). With "size" in
// the place of ROUNDS, the bytes of one snapshot.
#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "analysis/growth/GrowthStore.h"
#include "analysis/growth/comparison.h"
#include "platform/posix/PosixFileManager.h"
#include "rounds.h"
#include "stopwatch.h"

namespace {

using velto::FolderTreeBuilder;

constexpr std::uint32_t folders = 200'000;

/// Names as long as usual; every tenth folder changes from one analysis to the next, some come,
/// some go, some have another name.
velto::FolderTree made(bool isLater) {
    std::vector<std::string> names(folders);
    std::vector<FolderTreeBuilder::Entry> entries;
    for (std::uint32_t number = 0; number < folders; ++number) {
        const bool isRenamed = isLater && number % 997 == 996;
        const bool isMissing = number % 1009 == (isLater ? 1007 : 1008);
        names[number] = number == 0 ? "/home/ana"
                                    : fmt::format("{}-{:x}", isRenamed ? "renamed" : "folder",
                                                  number * 2654435761U);
        if (isMissing) continue;
        const std::int64_t more = isLater && number % 10 == 0 ? 40'000'000 : 0;
        entries.push_back({.number = number,
                           .parent = number == 0 ? FolderTreeBuilder::noParent : (number - 1) / 6,
                           .name = names[number],
                           .facts = {.inode = 1'000'000 + number,
                                     .ownBytes = 1'000'000 + number % 5'000'000 + more}});
    }
    return FolderTreeBuilder::build(entries);
}

velto::GrowthSnapshot snapshot(const velto::FolderTree& tree, std::int64_t moment) {
    return velto::GrowthSnapshot::of(tree, {.moment = moment, .leftOut = {}, .volumes = {"disk"}});
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        fmt::print(stderr, "usage: bench_growth FOLDER ROUNDS|size\n");
        return 2;
    }
    const velto::FolderTree before = made(false);
    const velto::FolderTree after = made(true);
    if (std::string_view(arguments[2]) == "size") {
        fmt::print("{} {}\n", snapshot(after, 2).size(), snapshot(after, 2).encoded()->size());
        return 0;
    }
    velto::PosixFileManager files;
    velto::HomeLayout layout;
    layout.dataFolder = std::filesystem::absolute(arguments[1]).lexically_normal();
    velto::GrowthStore store(files, files, layout);
    store.forget();
    return velto::printRounds(arguments[2], [&] {
        const double keeping = velto::milliseconds([&] { store.add(snapshot(before, 1)); });
        store.add(snapshot(after, 2));
        std::shared_ptr<const velto::GrowthSnapshot> earlier;
        std::shared_ptr<const velto::GrowthSnapshot> later;
        std::size_t told = 0;
        const auto compare = [&] {
            const velto::Growth growth = velto::compareGrowth(*earlier, *later);
            told = growth.grown.size() + growth.renamed.size();
        };
        const double whole = velto::milliseconds([&] {
            earlier = store.load(1);
            later = store.load(2);
            compare();
        });
        const double comparing = velto::milliseconds(compare);
        if (told == 0) throw velto::FileError("compare", layout.dataFolder, 0);
        return std::array{whole, comparing, keeping};
    });
}
