#include "maintenance/SystemTrash.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>

#include "made_times.h"
#include "support/TestPlatform.h"

namespace velto {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

struct SystemTrashTest : testing::Test {
    TestPlatform machine;

    SystemTrashTest() {
        machine.platform.layout = HomeLayout::freedesktop(
            machine.home.path(), [](const std::string&) { return std::nullopt; }, "");
    }

    void throwAway(const std::string& name, const std::string& date) {
        machine.home.text("/.local/share/Trash/files/" + name, "content");
        machine.home.text("/.local/share/Trash/info/" + name + ".trashinfo",
                          "[Trash Info]\nPath=/home/ana/" + name + "\nDeletionDate=" + date + "\n");
    }
};

TEST(DeletionDate, IsReadInLocalTime) {
    EXPECT_EQ(deletionDate("[Trash Info]\nPath=a\nDeletionDate=2024-07-01T13:00:00\n"),
              localTime(2024, 7, 1, 13));
    EXPECT_EQ(deletionDate("DeletionDate=2024-01-31T00:00:00"), localTime(2024, 1, 31, 0));
}

TEST(DeletionDate, ADamagedNoteHasNone) {
    for (const char* note : {"", "[Trash Info]", "DeletionDate=", "DeletionDate=soon",
                             "DeletionDate=2024-13-01T00:00:00", "Path=DeletionDate=2024-01-01"}) {
        EXPECT_FALSE(deletionDate(note)) << note;
    }
}

TEST_F(SystemTrashTest, TheDesktopsTrashTellsWhenSomethingWasThrownAway) {
    throwAway("b.iso", "2024-07-01T13:00:00");
    throwAway("a.iso", "2024-06-01T10:00:00");
    const auto items = SystemTrash(machine.platform).items();
    ASSERT_THAT(items, SizeIs(2));
    EXPECT_EQ(items[0].name, "a.iso");
    EXPECT_EQ(items[0].path, machine.home.path(".local/share/Trash/files/a.iso"));
    EXPECT_EQ(items[0].since, localTime(2024, 6, 1, 10));
    EXPECT_EQ(items[1].since, localTime(2024, 7, 1, 13));
}

TEST_F(SystemTrashTest, AnItemWithoutANoteCountsFromItsLastModification) {
    machine.home.text(".local/share/Trash/files/a.iso", "x").dated(1000, 5000);
    const auto items = SystemTrash(machine.platform).items();
    ASSERT_THAT(items, SizeIs(1));
    EXPECT_EQ(items[0].since, 5000);
}

TEST_F(SystemTrashTest, WhatIsGoneLosesItsNoteAndNothingElseDoes) {
    throwAway("a.iso", "2024-06-01T10:00:00");
    throwAway("b.iso", "2024-06-01T10:00:00");
    const std::string path = machine.home.path(".local/share/Trash/files/a.iso");
    SystemTrash trash(machine.platform);
    trash.forget(path);
    EXPECT_TRUE(machine.home.exists(".local/share/Trash/info/a.iso.trashinfo")) << "still there";
    machine.platform.files->removeAll(path);
    trash.forget(path);
    EXPECT_FALSE(machine.home.exists(".local/share/Trash/info/a.iso.trashinfo"));
    EXPECT_TRUE(machine.home.exists(".local/share/Trash/info/b.iso.trashinfo"));
}

TEST_F(SystemTrashTest, ATrashThatIsNotThereHasNothing) {
    EXPECT_THAT(SystemTrash(machine.platform).items(), IsEmpty());
}

TEST(SystemTrashOfAMac, ItsOwnDateOfArrivalComesFirst) {
    TestPlatform machine;
    machine.home.text(".Trash/a.iso", "x").dated(1000, 5000);
    machine.home.text(".Trash/b.iso", "x").dated(1000, 6000);
    const auto items = SystemTrash(machine.platform, [&](const std::string& path) {
                           return path.ends_with("a.iso") ? std::optional(7000.0) : std::nullopt;
                       }).items();
    ASSERT_THAT(items, SizeIs(2));
    EXPECT_EQ(items[0].since, 7000);
    EXPECT_EQ(items[1].since, 6000);
}

}  // namespace
}  // namespace velto
