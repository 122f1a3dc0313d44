#include "cleaning/TrashFixture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using TrashSizes = TrashTest;

TEST_F(TrashSizes, AFileIsLookedAtWhateverTheListsHadRounded) {
    const std::string path = file("film.mov", std::string(9000, 'x'));
    const std::int64_t bytes = process.files.attributes(path)->allocatedSize;
    const TrashItem item = service.moveToTrash({path}, "wind", {{path, 1.2}}).items.front();
    EXPECT_THAT(service.exactSizes(), ElementsAre(Pair(item.id, bytes)));
}

TEST_F(TrashSizes, OfAFolderIsToldWhatWasMeasuredAndNothingThatWasRounded) {
    const std::string measured = folder("measured");
    const std::string rounded = folder("rounded");
    const auto items =
        service.moveToTrash({measured, rounded}, "wind", {{measured, 0.001234567}, {rounded, 0.3}})
            .items;
    EXPECT_THAT(service.exactSizes(), ElementsAre(Pair(items[0].id, 1'234'567)));
}

TEST_F(TrashSizes, WhatIsNoSizeIsNotTold) {
    for (const double gb : {-1.5, 0.0, 1e12}) {
        const std::string path = folder("folder of " + std::to_string(gb));
        service.moveToTrash({path}, "wind", {{path, gb}});
    }
    EXPECT_THAT(service.exactSizes(), IsEmpty());
}

TEST_F(TrashSizes, ALinkInThePlaceOfAnItemIsNotFollowed) {
    const TrashItem item = trashed("a.txt");
    std::filesystem::remove(stored(item));
    std::filesystem::create_symlink(file("elsewhere", std::string(9000, 'x')), stored(item));
    EXPECT_THAT(service.exactSizes(), IsEmpty());
}

TEST_F(TrashSizes, WhatHasLeftTheTrashIsForgotten) {
    const TrashItem item = trashed("a.txt");
    EXPECT_EQ(service.exactSizes().size(), 1u);
    service.restore(item.id);
    EXPECT_THAT(service.exactSizes(), IsEmpty());
}

}  // namespace
}  // namespace velto
