#include <map>

#include "bridge/FolderFixture.h"

namespace velto {
namespace {

using FolderDeparturesTest = FolderFixture;

/// Of the folders inside that the last answer tells, by name.
std::map<std::string, std::int64_t> bytesInside(const nlohmann::json& contents) {
    std::map<std::string, std::int64_t> bytes;
    for (const auto& folder : contents["folders"])
        bytes[folder["name"]] = folder["bytes"];
    return bytes;
}

TEST_F(FolderDeparturesTest, WhatHasLeftForTheTrashCountsNoMoreUntilItIsBack) {
    home.file("Movies/trip/a.mov", 3_MB);
    home.file("Movies/trip/b.mov", 2_MB);
    home.file("Movies/old/c.mov", 1_MB);
    analyse();
    const auto ask = [&](const char* type, const nlohmann::json& payload) {
        machine.clock.time += 10;
        post(type, payload);
        machine.dispatcher.runAll();
    };
    const auto movies = [&] {
        ask("folder", {{"path", home.path("Movies")}, {"request", 1}});
        return last("onFolder");
    };
    ask("folder", {{"path", home.path("Movies/trip")}, {"request", 1}});
    std::int64_t first = 0;  // as the disk counts the file that goes first
    const nlohmann::json trip = last("onFolder");
    for (const auto& file : trip["entries"]) {
        if (file["name"] == "a.mov") first = file["bytes"];
    }
    ASSERT_GT(first, 0);
    const auto before = movies();
    const auto inside = bytesInside(before);

    ask("deleteFiles", {{"paths", {home.path("Movies/trip/a.mov")}}});
    const auto without = movies();
    EXPECT_EQ(bytesInside(without)["trip"], inside.at("trip") - first);
    EXPECT_EQ(without["bytes"], before["bytes"].get<std::int64_t>() - first);
    EXPECT_EQ(without["files"], before["files"].get<std::int64_t>() - 1);

    // The folder with what is left of it: nothing is subtracted twice.
    ask("deleteFiles", {{"paths", {home.path("Movies/trip")}}});
    EXPECT_EQ(movies()["bytes"], before["bytes"].get<std::int64_t>() - inside.at("trip"));
    ask("undoLast", nullptr);
    EXPECT_EQ(movies()["bytes"], without["bytes"]);
    ask("undoLast", nullptr);
    EXPECT_EQ(movies()["bytes"], before["bytes"]);

    // What is deleted for good has left, too.
    ask("deleteFiles", {{"paths", {home.path("Movies/old")}}});
    ask("purgeTrash", nullptr);
    EXPECT_EQ(movies()["bytes"], before["bytes"].get<std::int64_t>() - inside.at("old"));
    ask("scan", nullptr);
    EXPECT_EQ(movies()["bytes"], before["bytes"].get<std::int64_t>() - inside.at("old"));
}

}  // namespace
}  // namespace velto
