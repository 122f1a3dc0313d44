// Somebody else has written the program's own files. What they say is a claim: it deletes and
// plants nothing.

#include <gmock/gmock.h>

#include <algorithm>
#include <ostream>

#include <nlohmann/json.hpp>

#include "attack/attack_world.h"

namespace velto {
namespace {

using nlohmann::json;
using Reason = TrashError::Reason;

struct Forged : testing::Test {
    Forged() {
        for (const char* relative : {"Documents/thesis", "Documents/deep/notes", "Pictures/photo"})
            world.file(relative);
        world.file("Library/Application Support/Velto/Trash/opX/itAAAAAAAA-evil.desktop");
        world.files.createFolders(world.layout.agentsFolder);
    }

    static json item(const std::string& path, const std::string& name = "evil.desktop",
                     const std::string& id = "itAAAAAAAA", const std::string& operation = "opX") {
        return {{"id", id},     {"opID", operation}, {"originalPath", path},
                {"name", name}, {"gb", 1.0},         {"taken", 1.0}};
    }
    static json operation(const json& items, const std::string& id = "opX") {
        return {{"id", id}, {"ts", 1.0}, {"gb", 1.0}, {"items", items}, {"kind", "wind"}};
    }
    void writeManifest(const json& items) {
        json operations = json::array();
        if (!items.empty()) operations.push_back(operation(items));
        put("Trash/manifest.json", {{"items", items}, {"operations", operations}});
    }
    void writeJournal(const std::string& kind, const json& of, const json& ids,
                      const std::optional<json>& steps = std::nullopt) {
        json entry{{"kind", kind}, {"operation", of}, {"itemIDs", ids}};
        if (steps) entry["steps"] = *steps;
        put("Trash.journal", entry);
    }
    void put(const std::string& name, const json& content) {
        world.files.writeAtomically(world.data(name), content.dump());
    }

    VeltoTrashService& trash() {
        return service.emplace(world.files, world.files, world.clock, world.log, world.layout);
    }
    /// All files of the home but the program's own lists.
    void expectAllFilesThere() {
        auto expected = world.contents;
        std::ranges::sort(expected);
        EXPECT_EQ(world.found(), expected);
        world.expectOutsideUntouched();
    }
    std::string stored() const { return world.data("Trash/opX/itAAAAAAAA-evil.desktop"); }

    AttackWorld world;
    std::optional<VeltoTrashService> service;
};

TEST_F(Forged, AManifestRestoresNothingOutsideTheHome) {
    for (const std::string& path :
         {world.root.path("outside/evil.desktop"), std::string("/etc/cron.d/evil.desktop"),
          world.home("../outside/evil.desktop"), world.home(""), std::string("evil.desktop"),
          std::string(), world.root.path("home2/evil.desktop"),
          world.home("Documents") + "/../../outside/evil.desktop"}) {
        SCOPED_TRACE(path);
        writeManifest(json::array({item(path)}));
        try {
            trash().restore("itAAAAAAAA");
            ADD_FAILURE() << "restored";
        } catch (const TrashError& error) {
            EXPECT_EQ(error.reason(), Reason::outsideHome);
        }
        EXPECT_TRUE(world.files.exists(stored()));
        EXPECT_EQ(service->items().size(), 1u) << "it stays listed";
    }
    expectAllFilesThere();
}

TEST_F(Forged, AManifestPutsNothingAmongTheProgramsOwnFilesOrIntoWhatIsProtected) {
    const std::pair<std::string, Reason> cases[] = {
        {world.data("evil.desktop"), Reason::alreadyInTrash},
        {world.data("Trash/evil.desktop"), Reason::alreadyInTrash},
        {world.data("Trash/opX/evil.desktop"), Reason::alreadyInTrash},
        {world.home("Library/Mail/evil.desktop"), Reason::protected_},
        {world.home("Pictures/Photos Library.photoslibrary/evil.desktop"), Reason::protected_},
    };
    for (const auto& [path, reason] : cases) {
        SCOPED_TRACE(path);
        writeManifest(json::array({item(path)}));
        try {
            trash().restore("itAAAAAAAA");
            ADD_FAILURE() << "restored";
        } catch (const TrashError& error) {
            EXPECT_EQ(error.reason(), reason);
        }
    }
    expectAllFilesThere();
}

TEST_F(Forged, WhatComesBackBearsTheNameThatThePageShows) {
    writeManifest(json::array({item(world.layout.agentsFolder + "/evil.plist")}));
    EXPECT_THROW(trash().restore("itAAAAAAAA"), TrashError);
    EXPECT_TRUE(world.files.list(world.layout.agentsFolder).empty());
    // By its own name, and asked for by the user, it goes where the page says.
    writeManifest(json::array({item(world.layout.agentsFolder + "/evil.desktop")}));
    trash().restore("itAAAAAAAA");
    EXPECT_TRUE(world.files.exists(world.layout.agentsFolder + "/evil.desktop"));
}

TEST_F(Forged, NamesThatAreNoNamesReachNothing) {
    for (const std::array<std::string, 3>& forged : std::vector<std::array<std::string, 3>>{
             {"..", "x", "opX"},
             {"itAAAAAAAA", "../../../../Documents", "opX"},
             {"it/../../x", "thesis", "opX"},
             {"itAAAAAAAA", "evil.desktop", ".."},
             {"itAAAAAAAA", "evil.desktop", "../../Velto/Trash/opX"},
             {"itAAAAAAAA", "evil.desktop", "."},
             {"", "", ""}}) {
        const std::string& id = forged[0];
        const std::string& name = forged[1];
        const std::string& operationID = forged[2];
        SCOPED_TRACE(id + " " + name + " " + operationID);
        writeManifest(json::array({item(world.home("Documents/" + name), name, id, operationID)}));
        tryTo([&] { trash().restore(id); });
        tryTo([&] { service->restoreTo(id, world.home("Pictures")); });
        tryTo([&] { service->deletePermanently(id); });
        world.clock.time += 90 * 86'400;
        service->purgeExpired(30);
        expectAllFilesThere();
    }
}

struct ForgedEntry {
    const char* name;
    const char* kind;
    json of;
    json ids;
    std::optional<json> steps = std::nullopt;
};

TEST_F(Forged, AJournalDeletesAndPlantsNothing) {
    const auto evil = [&](const std::string& path) { return json::array({item(path)}); };
    const std::string autostart = world.layout.agentsFolder + "/evil.desktop";
    json second = item(world.home("Documents/gone"), "gone", "itBBBBBBBB");
    const std::vector<ForgedEntry> entries{
        {"empty without names", "empty", operation(json::array(), ""), json::array()},
        {"empty with others", "empty", operation(json::array(), ""), json::array({"itCCCCCCCC"})},
        {"purge of a whole operation", "purge", operation(json::array()), json::array()},
        {"remove of a whole operation", "remove", operation(json::array()), json::array()},
        {"remove of what is not listed", "remove", operation(json::array()),
         json::array({"itBBBBBBBB"})},
        {"move of another operation's items", "move",
         operation(json::array({item(autostart, "evil.desktop", "itAAAAAAAA", "opY")})),
         json::array()},
        {"move into autostart, cut off", "move", operation(json::array({item(autostart), second})),
         json::array()},
        {"move out of the home, cut off", "move",
         operation(json::array({item(world.root.path("outside/evil.desktop")), second})),
         json::array()},
        {"move under another name, cut off", "move",
         operation(json::array({item(world.home("Documents/other")), second})), json::array()},
        {"move into the data folder, cut off", "move",
         operation(json::array({item(world.data("evil.desktop")), second})), json::array()},
        {"move with an id that is a path", "move",
         operation(
             json::array({item(world.home("Documents/thesis"), "thesis", "../../Documents")})),
         json::array()},
        {"move of an operation that is a path", "move",
         operation(json::array({item(world.home("Documents/x"), "x", "itAAAAAAAA", "../../..")}),
                   "../../.."),
         json::array()},
        {"move of a file that was never moved", "move",
         operation(json::array({item(world.home("Documents/thesis"), "thesis", "itAAAAAAAA")})),
         json::array()},
        {"restore to anywhere", "restore", operation(evil(autostart)), json::array({"itAAAAAAAA"}),
         json{{"itemID", "itAAAAAAAA"}, {"target", world.root.path("outside/victim")}}},
        {"restore over a file", "restore", operation(evil(autostart)), json::array({"itAAAAAAAA"}),
         json{{"itemID", "itAAAAAAAA"}, {"target", world.home("Documents/thesis")}}},
        {"restore to no path", "restore", operation(evil(autostart)), json::array({"itAAAAAAAA"}),
         json{{"itemID", "itAAAAAAAA"}, {"target", ""}}},
        {"restore of all of nothing", "restore", operation(json::array(), ""), json::array()},
    };
    for (const ForgedEntry& entry : entries) {
        for (const bool isListed : {true, false}) {
            SCOPED_TRACE(testing::Message() << entry.name << (isListed ? ", listed" : ""));
            writeManifest(isListed ? json::array({item(world.home("Documents/evil.desktop"))})
                                   : json::array());
            writeJournal(entry.kind, entry.of, entry.ids, entry.steps);
            trash().items();
            expectAllFilesThere();
            EXPECT_TRUE(world.files.exists(stored())) << "it stays in the trash";
            EXPECT_FALSE(world.files.exists(autostart));
            // Nobody is in its way: the next change is made.
            service->undoOperation(service->moveToTrash({world.home("Pictures/photo")}, "wind").id);
            EXPECT_FALSE(world.files.exists(world.data("Trash.journal")));
            expectAllFilesThere();
            if (HasFailure()) return;
        }
    }
}

TEST_F(Forged, AJournalDoesNotMakeAnOriginalThatWasPutAsideGo) {
    // A move of "thesis" between volumes, cut off after the original was put aside; the entry says
    // that something else is its copy.
    const std::string aside = world.home("Documents/.velto-itAAAAAAAA");
    std::filesystem::rename(world.home("Documents/thesis"), aside);
    writeJournal("move", operation(json::array({item(world.home("Documents/evil.desktop"))})),
                 json::array());
    trash().items();
    expectAllFilesThere();
}

TEST_F(Forged, WhateverStandsInTheFilesNothingOfTheUsersIsTouched) {
    const std::vector<std::string> contents{
        "",
        "[]",
        "{}",
        "null",
        "{\"items\":7,\"operations\":null}",
        "\xff\xfe",
        std::string(100'000, '['),
        "{\"kind\":\"empty\"}",
        "{\"origins\":{\"a\":7}}",
        "{\"origins\":{},\"move\":7}",
        "{\"origins\":{},\"move\":{\"from\":1,\"to\":2,\"scratch\":3}}",
        std::string("{\"kind\":\"purge\",\"operation\":{},\"itemIDs\":[") +
            std::string(5'000, '1') + "]}",
    };
    for (const char* name :
         {"Trash/manifest.json", "Trash.journal", "cloud.json", "history.json"}) {
        for (const std::string& content : contents) {
            SCOPED_TRACE(std::string(name) + ": " + content.substr(0, 60));
            world.files.writeAtomically(world.data(name), content);
            tryTo([&] { trash().items(); });
            HistoryService history(world.files, world.files, world.log, world.layout);
            CloudFolder cloud(world.files, world.files, world.log, world.layout);
            cloud.settle();
            tryTo([&] { history.clear(); });
            service->purgeExpired(30);
            expectAllFilesThere();
            world.files.removeAll(world.data(name));
        }
    }
}

}  // namespace
}  // namespace velto
