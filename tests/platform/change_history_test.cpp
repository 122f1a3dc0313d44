#include "platform/change_history.h"

#include <gmock/gmock.h>

namespace velto {
namespace {

using testing::ElementsAre;
using testing::Optional;

TEST(ChangeHistory, TellsEachFolderOnceWhenThePastIsOver) {
    ChangeHistory history;
    history.take("/Users/ana/b/", 0);
    history.take("/Users/ana/a", 0);
    history.take("/Users/ana/b", change_flags::mustScanSubfolders);
    history.take("/", 0);
    EXPECT_FALSE(history.isOver());
    history.take("", change_flags::historyDone);
    EXPECT_TRUE(history.isOver());
    history.take("/Users/ana/later", change_flags::userDropped);
    EXPECT_THAT(history.takeResult(),
                Optional(ElementsAre(FolderChange{"/", false}, FolderChange{"/Users/ana/a", false},
                                     FolderChange{"/Users/ana/b", true})));
}

TEST(ChangeHistory, TellsNothingBeforeThat) {
    ChangeHistory history;
    history.take("/Users/ana/a", 0);
    EXPECT_EQ(history.takeResult(), std::nullopt);
}

TEST(ChangeHistory, TellsNothingAfterAnyDoubt) {
    for (const std::uint32_t doubt :
         {change_flags::userDropped, change_flags::kernelDropped, change_flags::identifiersWrapped,
          change_flags::rootChanged, change_flags::mount, change_flags::unmount}) {
        ChangeHistory history;
        history.take("/Users/ana/a", doubt | change_flags::mustScanSubfolders);
        EXPECT_TRUE(history.isOver()) << doubt;
        history.take("", change_flags::historyDone);
        EXPECT_EQ(history.takeResult(), std::nullopt) << doubt;
    }
}

TEST(ChangeHistory, TellsNothingOfAPathThatLeadsNowhere) {
    ChangeHistory history;
    history.take("ana/a", 0);
    history.take("", change_flags::historyDone);
    EXPECT_EQ(history.takeResult(), std::nullopt);
}

TEST(ChangeHistory, TellsNothingOfMoreThanItHolds) {
    ChangeHistory history;
    for (std::size_t count = 0; count <= ChangeHistory::mostChanges; ++count)
        history.take("/Users/ana/a", 0);
    history.take("", change_flags::historyDone);
    EXPECT_EQ(history.takeResult(), std::nullopt);
}

}  // namespace
}  // namespace velto
