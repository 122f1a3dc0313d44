#include "platform/program_places.h"

#include <gtest/gtest.h>

#include "support/TempHome.h"

namespace velto {
namespace {

TEST(ProgramPlaces, AnApplicationThatWasNeverMovedIsNotThereForLong) {
    EXPECT_TRUE(isPassingPlace(
        "/private/var/folders/zz/T/AppTranslocation/0F8FAD5B/d/Velto.app/Contents/MacOS/velto",
        true));
}

TEST(ProgramPlaces, ADiskImageGoesAndAnExternalDiskStays) {
    const char* const program = "/Volumes/Velto/Velto.app/Contents/MacOS/velto";
    EXPECT_TRUE(isPassingPlace(program, true));
    EXPECT_FALSE(isPassingPlace(program, false));
}

TEST(ProgramPlaces, WhatIsInstalledStays) {
    for (const bool isReadOnly : {false, true}) {
        for (const char* program :
             {"/Applications/Velto.app/Contents/MacOS/velto", "/opt/velto/velto",
              "/Users/ana/Applications/Velto.app/Contents/MacOS/velto"}) {
            EXPECT_FALSE(isPassingPlace(program, isReadOnly)) << program;
        }
    }
}

TEST(ProgramPlaces, WhereOneCanWriteIsNoReadOnlyVolume) {
    const TempHome home;
    EXPECT_FALSE(isOnReadOnlyVolume(home.path()));
    EXPECT_FALSE(isOnReadOnlyVolume(home.path("nothing")));
}

}  // namespace
}  // namespace velto
