#include "cleaning/own_folder.h"

#include <gtest/gtest.h>

#include <string_view>

#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/WatchedFileCalls.h"

namespace velto {
namespace {

/// Another process makes the folder just after it was found missing.
struct OwnFolderMadeMeanwhile : testing::Test {
    OwnFolderMadeMeanwhile() {
        calls.refuses = [this](const char* call, const char* name) {
            if (std::string_view(call) != "open" || std::string_view(name) != "Growth") return 0;
            if (home.exists("Growth")) return 0;
            home.folder("Growth");
            return ENOENT;
        };
    }

    TempHome home;
    WatchedFileCalls calls;
    PosixFileManager mover{calls};
};

TEST_F(OwnFolderMadeMeanwhile, IsOpenedWhereItIsLookedFor) {
    EXPECT_NE(openOwnFolder(mover, home.path("Growth")), nullptr);
}

TEST_F(OwnFolderMadeMeanwhile, IsTakenWhereItIsToBeMade) {
    EXPECT_NE(makeOwnFolder(mover, home.path("Growth")), nullptr);
}

}  // namespace
}  // namespace velto
