#include "platform/posix/mac_attributes.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace velto {
namespace {

TEST(MacAttributes, WhatOnlyTheSystemMaySetStaysBehind) {
    for (const char* name : {"com.apple.provenance", "com.apple.macl", "com.apple.rootless",
                             "com.apple.quarantine", "com.apple.lastuseddate#PS"}) {
        EXPECT_TRUE(isAttributeOfMacSystem(name)) << name;
        EXPECT_TRUE(mayStayBehindOnMac(name, EPERM)) << name;
        EXPECT_TRUE(mayStayBehindOnMac(name, EACCES)) << name;
    }
}

TEST(MacAttributes, AnyOtherFailureKeepsTheFileWhereItIs) {
    for (const int reason : {ENOSPC, EIO, ENOTSUP, ENAMETOOLONG, 0})
        EXPECT_FALSE(mayStayBehindOnMac("com.apple.provenance", reason)) << reason;
}

TEST(MacAttributes, WhatAPersonHasGivenAFileNeverStaysBehind) {
    for (const char* name :
         {"com.apple.metadata:_kMDItemUserTags", "com.apple.metadata:kMDItemFinderComment",
          "com.apple.FinderInfo", "com.apple.ResourceFork", "com.apple.TextEncoding",
          "org.example.note", "user.note", "com.applesauce.note", "com.apple"}) {
        EXPECT_FALSE(isAttributeOfMacSystem(name)) << name;
        EXPECT_FALSE(mayStayBehindOnMac(name, EPERM)) << name;
    }
}

}  // namespace
}  // namespace velto
