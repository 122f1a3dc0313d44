#include "platform/values/PlaceTable.h"

#include <gmock/gmock.h>

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsNull;
using testing::NotNull;

TEST(PlaceTable, AFolderWhoseNameOnlyBeginsLikeALeftOutOneIsNotLeftOut) {
    PlaceTable places;
    places.leaveOut("/home/ana/Music");
    EXPECT_TRUE(places.leavesOut("/home/ana/Music"));
    EXPECT_TRUE(places.leavesOut("/home/ana/Music/live/a.mp3"));
    EXPECT_FALSE(places.leavesOut("/home/ana/Musicals"));
    EXPECT_FALSE(places.leavesOut("/home/ana/music"));
    EXPECT_FALSE(places.leavesOut("/home/ana"));
}

TEST(PlaceTable, NothingIsSaidBelowFoldersThatNobodyNamed) {
    PlaceTable places;
    places.at("/home/ana/Library/Mail").role = 3;
    const Place* home = places.find("/home/ana");
    ASSERT_THAT(home, NotNull());
    EXPECT_THAT(home->child("Music"), IsNull());
    ASSERT_THAT(home->child("Library"), NotNull());
    EXPECT_EQ(home->child("Library")->role, 0u);
    EXPECT_EQ(home->child("Library")->child("Mail")->role, 3u);
    EXPECT_THAT(places.find("/home/ana/Library/Mail/V10"), IsNull());
}

TEST(PlaceTable, APathThatIsNotAbsoluteLeavesOutNothing) {
    PlaceTable places;
    places.leaveOut("");
    places.leaveOut("Music");
    EXPECT_FALSE(places.leavesOut("/"));
    EXPECT_FALSE(places.leavesOut("/Music"));
    EXPECT_FALSE(places.leavesOut("Music"));
}

TEST(PlaceTable, TheFolderAboveKeepsTheNameOfAFlaggedOne) {
    PlaceTable places;
    places.keepFlagged("/home/ana/Library");
    places.keepFlagged("/home/ana/Music");
    ASSERT_THAT(places.find("/home/ana"), NotNull());
    EXPECT_THAT(places.find("/home/ana")->keepFlagged, ElementsAre("Library", "Music"));
}

}  // namespace
}  // namespace velto
