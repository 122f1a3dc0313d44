#include "platform/posix/foreign_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TempHome.h"

namespace velto {
namespace {

TEST(ForeignFile, AnOrdinaryFileIsReadWhole) {
    TempHome home;
    home.text("entry", "content");
    home.link("link", "entry");
    EXPECT_EQ(readForeignFile(home.path("entry"), 7), "content");
    EXPECT_EQ(readForeignFile(home.path("link"), 100), "content");
    EXPECT_EQ(readForeignFile(home.text("empty", "").path(), 0), "");
}

TEST(ForeignFile, NoPipeHoldsTheProgramUp) {
    // Without O_NONBLOCK each of these waits for a writer that never comes.
    TempHome home;
    ASSERT_EQ(mkfifo(home.path("pipe").c_str(), 0600), 0);
    home.link("link", "pipe");
    EXPECT_FALSE(readForeignFile(home.path("pipe"), 100));
    EXPECT_FALSE(readForeignFile(home.path("link"), 100));
    EXPECT_FALSE(openForeignFile(home.path("pipe")));
    EXPECT_EQ(errno, EINVAL);
}

TEST(ForeignFile, WhatIsNoFileIsNotRead) {
    TempHome home;
    home.link("loop", "loop");
    for (const std::string& path :
         {home.path(), home.path("missing"), home.path("loop"), std::string("/dev/zero"),
          std::string("/dev/tty"), std::string("/etc/hostname\0x", 15), std::string()}) {
        EXPECT_FALSE(readForeignFile(path, 100)) << path;
    }
}

TEST(ForeignFile, NothingBeyondTheBoundIsRead) {
    TempHome home;
    EXPECT_FALSE(readForeignFile(home.text("long", "12345678").path(), 7));
    EXPECT_FALSE(readForeignFile(home.sparse("sparse", 3'000'000'000).path(), 1'000'000));
    // Files of the kernel claim to be empty.
    EXPECT_TRUE(readForeignFile("/proc/self/status", 1'000'000));
    EXPECT_FALSE(readForeignFile("/proc/self/status", 10));
}

}  // namespace
}  // namespace velto
