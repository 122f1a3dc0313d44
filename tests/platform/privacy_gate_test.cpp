#include "platform/privacy_gate.h"

#include <gmock/gmock.h>

namespace velto {
namespace {

const HomeLayout mac = HomeLayout::macOS("/Users/ana");

TEST(PrivacyGate, WhatTheSystemGuardsStaysClosedWithAllThatIsInIt) {
    for (const char* path :
         {"/Users/ana/Documents", "/Users/ana/Documents/letters/1.txt", "/Users/ana/Downloads",
          "/Users/ana/.Trash", "/Users/ana/Library/Containers/com.example.app",
          "/Users/ana/Library/Group Containers", "/Users/ana/Library/CloudStorage/Drive",
          "/Users/ana/Library/Application Support/AddressBook",
          "/Users/ana/Pictures/Photos Library.photoslibrary/database"}) {
        EXPECT_TRUE(isBehindPrivacyGate(mac, path)) << path;
    }
}

TEST(PrivacyGate, WhatIsBesideAndAboveItIsOpen) {
    for (const char* path :
         {"/Users/ana", "/Users/ana/Library", "/Users/ana/Library/Application Support",
          "/Users/ana/Documents 2", "/Users/ana/Library/Caches/com.example.app",
          "/Users/ana/Pictures", "/Applications", "/Users/eva/Documents"}) {
        EXPECT_FALSE(isBehindPrivacyGate(mac, path)) << path;
    }
}

TEST(PrivacyGate, AHomeWithoutOneHasEverythingOpen) {
    const HomeLayout linux = HomeLayout::freedesktop(
        "/home/ana", [](const std::string&) { return std::nullopt; }, "");
    EXPECT_FALSE(isBehindPrivacyGate(linux, "/home/ana/Documents"));
    HomeLayout open = mac;
    open.hasPrivacyGate = false;
    EXPECT_FALSE(isBehindPrivacyGate(open, "/Users/ana/Documents"));
}

}  // namespace
}  // namespace velto
