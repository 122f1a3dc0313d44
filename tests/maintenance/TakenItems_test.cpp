#include "maintenance/TakenItems.h"

#include <gtest/gtest.h>

#include "support/TestPlatform.h"

namespace velto {
namespace {

constexpr const char* file = "Library/Application Support/Velto/maintenance_taken.json";

struct TakenItemsTest : testing::Test {
    TakenItems stored() { return {*machine.platform.files, machine.platform.layout}; }

    TestPlatform machine;
    TrashItem cache{.id = "it1", .opID = "op1", .originalPath = "/home/Caches/a", .name = "a"};
    TrashItem download{
        .id = "it2", .opID = "op1", .originalPath = "/home/Downloads/b", .name = "b"};
    Operation operation{.id = "op1", .items = {cache, download}, .kind = "maintenance"};
};

TEST_F(TakenItemsTest, WhatWasNotedIsKnownToTheNextProcess) {
    TakenItems taken = stored();
    taken.note(operation, {{"/home/Caches/a", "caches"}, {"/home/Downloads/b", "oldDownloads"}});
    taken.save();
    EXPECT_EQ(stored().ruleOf(cache), "caches");
    EXPECT_EQ(stored().ruleOf(download), "oldDownloads");
}

TEST_F(TakenItemsTest, AnItemOfTheSameShortNameInAnotherOperationIsAnother) {
    TakenItems taken = stored();
    taken.note(operation, {{"/home/Caches/a", "caches"}});
    TrashItem other = cache;
    other.opID = "op2";
    EXPECT_EQ(taken.ruleOf(other), "");
    EXPECT_EQ(taken.ruleOf(download), "") << "no rule was told";
}

TEST_F(TakenItemsTest, WhatHasLeftTheTrashIsForgotten) {
    TakenItems taken = stored();
    taken.note(operation, {{"/home/Caches/a", "caches"}, {"/home/Downloads/b", "oldDownloads"}});
    taken.keepOnly({download});
    taken.save();
    EXPECT_EQ(stored().ruleOf(cache), "");
    EXPECT_EQ(stored().ruleOf(download), "oldDownloads");
}

TEST_F(TakenItemsTest, ADamagedFileKnowsNothingAndIsReplaced) {
    for (const char* damage :
         {"", "{", "[]", R"({"items":5})", R"({"items":[{"id":1}]})",
          R"({"items":[{"id":"it1","operation":"op1","rule":"caches"},{}]})"}) {
        machine.home.text(file, damage);
        EXPECT_EQ(stored().ruleOf(cache), "") << damage;
    }
    TakenItems taken = stored();
    taken.note(operation, {{"/home/Caches/a", "caches"}});
    taken.save();
    EXPECT_EQ(stored().ruleOf(cache), "caches");
}

TEST_F(TakenItemsTest, WithoutANewsNothingIsWritten) {
    TakenItems taken = stored();
    taken.keepOnly({});
    taken.note(operation, {});
    taken.save();
    EXPECT_FALSE(machine.home.exists(file));
}

}  // namespace
}  // namespace velto
