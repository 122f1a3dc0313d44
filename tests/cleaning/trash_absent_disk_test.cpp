// A move between two volumes was cut off, and at the next start one of them is out of reach, or
// something else stands in its place. What is whole stays where it is, what is not is never shown
// as the whole, and everything else in the trash goes on working.

#include "AbsentDiskFixture.h"

namespace velto {
namespace {

TEST_P(AbsentDisk, NothingOfItIsHiddenOrTakenForTheWhole) {
    cutOff();
    takeOut();
    {
        const auto without = process();
        refuse(*without);
        EXPECT_LE(listedWhole(*without), 1);
        expectTrashWorks(*without);
        EXPECT_LE(listedWhole(*without), 1);
        if (GetParam().absence.kind == Absence::Kind::anotherDisk) {
            EXPECT_EQ(world.home.read(thing), "of another") << "a disk that nobody had chosen";
        }
    }
    putBack();
    const auto with = process();
    const int listed = listedWhole(*with);
    const bool isThere = treeText(world.path(thing)) == whole;
    EXPECT_EQ(listed + (isThere ? 1 : 0), 1) << "it is lost, or in two places";
    EXPECT_EQ(world.home.read("disk/things/other"), "of the disk");
    EXPECT_THAT(scratchNames(disk), testing::IsEmpty());
    EXPECT_THAT(scratchNames(world.trashPath()), testing::IsEmpty());
    for (const TrashItem& item : std::vector(with->service->items()))
        with->service->restore(item.id);
    EXPECT_EQ(treeText(world.path(thing)), whole);
}

TEST_P(AbsentDisk, EmptyingTheTrashMeanwhileDeletesNothingThatMayBeAllThereIs) {
    cutOff();
    takeOut();
    int wasListed = 0;
    {
        const auto without = process();
        refuse(*without);
        wasListed = listedWhole(*without);
        EXPECT_NO_THROW(without->service->emptyTrash());
        EXPECT_EQ(listedWhole(*without), 0);
    }
    putBack();
    if (wasListed > 0) return;  // it was whole in the trash, and has been deleted for good
    const auto with = process();
    const int listed = listedWhole(*with);
    const bool isThere = treeText(world.path(thing)) == whole;
    EXPECT_EQ(listed + (isThere ? 1 : 0), 1) << "it is lost";
}

INSTANTIATE_TEST_SUITE_P(Of, AbsentDisk, testing::ValuesIn(casesOfAbsence()), [](const auto& one) {
    return std::string(one.param.cut.name) + one.param.absence.name;
});

}  // namespace
}  // namespace velto
