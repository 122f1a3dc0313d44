#include "platform/values/scratch_name.h"

#include <gtest/gtest.h>

#include "platform/values/uuid.h"

namespace velto {
namespace {

TEST(ScratchName, IsKnownInEitherForm) {
    EXPECT_TRUE(isScratchName(scratchName(newUUID())));
    EXPECT_TRUE(isScratchName(scratchName("itA1B2C3D4")));
    EXPECT_EQ(scratchName("itA1B2C3D4"), ".velto-itA1B2C3D4");
}

TEST(ScratchName, NothingElseIsTakenForOne) {
    for (const char* name :
         {"", ".velto-", "velto-itA1B2C3D4", ".velto-it", ".velto-itA1B2C3D4E", ".velto-it../../x",
          ".velto-it1/2", ".velto-..", ".velto-itA1B2C3D4-deadbeef", "Documents", ".", "..",
          ".velto-A1B2C3D4", ".velto-0123456789abcdef",
          ".velto-7a57a5a7-0000-4000-8000-000000000000",
          ".velto-7A57A5A7-0000-4000-8000-00000000000",
          ".velto-7A57A5A7/0000-4000-8000-000000000000"}) {
        EXPECT_FALSE(isScratchName(name)) << name;
    }
}

}  // namespace
}  // namespace velto
