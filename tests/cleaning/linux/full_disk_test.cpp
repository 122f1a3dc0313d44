// The same on a real volume that is full to the last block.

#include <gmock/gmock.h>

#include <cerrno>
#include <fstream>

#include "../TrashFixture.h"
#include "support/linux/private_mounts.h"

namespace velto {
namespace {

using FullVolume = TrashTest;

/// Until not another byte fits.
void fill(const std::string& path) {
    std::ofstream filler(path, std::ios::app);
    for (const std::size_t size : {65'536UL, 4'096UL, 1UL}) {
        const std::string part(size, 'f');
        while (filler << part << std::flush) {
        }
        filler.clear();
    }
}

TEST_F(FullVolume, CleaningUndoingRestoringAndDeletingGoOn) {
    const std::string place = home.path("volume");
    std::filesystem::create_directory(place);
    const InPrivate result = withPrivateMounts([&] {
        if (!mountMemory(place, "8m")) return false;
        HomeLayout inside = HomeLayout::macOS(place);
        const auto process = [&] { return std::make_unique<TrashProcess>(inside, clock); };
        for (const char* name : {"a", "b", "c"}) {
            std::filesystem::create_directory(place + "/" + name);
            std::ofstream(place + "/" + name + "/inside") << name;
        }
        const Operation first = process()->service.moveToTrash({place + "/a"}, "wind");
        fill(place + "/filler");
        EXPECT_EQ(failure([&] { process()->files.writeAtomically(place + "/more", "more"); }),
                  ENOSPC)
            << "there is room yet";
        const Operation second =
            process()->service.moveToTrash({place + "/b", place + "/c"}, "wind");
        fill(place + "/filler");
        process()->service.undoOperation(second.id);
        EXPECT_EQ(read(place + "/b/inside"), "b");
        fill(place + "/filler");
        process()->service.restore(first.items.front().id);
        EXPECT_EQ(read(place + "/a/inside"), "a");
        const Operation third =
            process()->service.moveToTrash({place + "/filler", place + "/a"}, "wind");
        process()->service.deletePermanently(third.items.front().id);
        process()->service.emptyTrash();
        EXPECT_TRUE(process()->service.items().empty());
        return true;
    });
    if (result == InPrivate::notAllowed) GTEST_SKIP() << "this user may not mount anything";
    EXPECT_EQ(result, InPrivate::done);
}

}  // namespace
}  // namespace velto
