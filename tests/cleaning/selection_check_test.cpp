#include "cleaning/selection_check.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "support/TestPlatform.h"
#include "support/ordinary_user.h"

namespace velto {
namespace {

using Stays = SelectionCheck::Reason;

/// 0: it can be moved; else one more than the reason. As a user who is no administrator.
int answerFor(TestPlatform& machine, const std::string& path) {
    return asOrdinaryUser({machine.home.path()}, [&] {
        const SelectionCheck check = checkSelection(machine.platform, {path});
        return check.stays.empty() ? 0 : 1 + static_cast<int>(check.stays.front().reason);
    });
}

TEST(SelectionCheck, AFolderThatMayNotBeChangedKeepsWhatIsInIt) {
    TestPlatform machine;
    const std::string file = machine.home.text("kept/file", "x").path();
    EXPECT_EQ(answerFor(machine, file), 0);
    chmod(machine.home.path("kept").c_str(), 0500);
    EXPECT_EQ(answerFor(machine, file), 1 + static_cast<int>(Stays::closed));
    // What cannot be seen is not said to be gone.
    chmod(machine.home.path("kept").c_str(), 0000);
    EXPECT_EQ(answerFor(machine, file), 1 + static_cast<int>(Stays::closed));
    chmod(machine.home.path("kept").c_str(), 0700);
    EXPECT_EQ(answerFor(machine, machine.home.path("kept/other")),
              1 + static_cast<int>(Stays::gone));
}

}  // namespace
}  // namespace velto
