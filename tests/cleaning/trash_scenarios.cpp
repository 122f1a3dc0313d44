#include "trash_scenarios.h"

#include <ostream>

#include "support/TempHome.h"

namespace velto {
namespace {

constexpr const char* someFolder = "Library/Caches/com.example.app";
constexpr const char* someFile = "Downloads/año nuevo.pdf";
constexpr const char* emptyFile = "Documents/empty";

const std::set<std::string> everything{someFile, "Downloads/\u202Eright to left.txt",
                                       "Documents/two\nlines \"quoted\".txt", emptyFile,
                                       someFolder};

void trash(TrashWorld& world, const std::vector<std::string>& relatives) {
    std::vector<std::string> paths;
    for (const std::string& relative : relatives)
        paths.push_back(world.path(relative));
    world.process()->service.moveToTrash(paths, "wind");
}

void trashAll(TrashWorld& world) {
    world.process()->service.moveToTrash(world.keptPaths(), "wind");
}

std::string itemOf(const TrashWorld& world, VeltoTrashService& service,
                   const std::string& relative) {
    for (const TrashItem& item : service.items()) {
        if (item.originalPath == world.path(relative)) return item.id;
    }
    return {};
}

std::set<std::string> everythingBut(const std::set<std::string>& some) {
    std::set<std::string> others = everything;
    for (const std::string& one : some)
        others.erase(one);
    return others;
}

}  // namespace

void PrintTo(const TrashScenario& scenario, std::ostream* stream) { *stream << scenario.name; }

const std::vector<TrashScenario>& trashScenarios() {
    static const std::vector<TrashScenario> scenarios{
        {"move",
         [](TrashWorld&) {},
         [](TrashWorld& world, VeltoTrashService& service) {
             service.moveToTrash(world.keptPaths(), "wind");
         },
         {},
         {}},
        {"move_beside_others",
         [](TrashWorld& world) { trash(world, {someFile}); },
         [](TrashWorld& world, VeltoTrashService& service) {
             service.moveToTrash({world.path(someFolder)}, "wind");
         },
         {},
         everythingBut({someFile, someFolder})},
        {"restore",
         trashAll,
         [](TrashWorld& world, VeltoTrashService& service) {
             service.restore(itemOf(world, service, someFolder));
         },
         {},
         {someFolder}},
        {"undo",
         trashAll,
         [](TrashWorld&, VeltoTrashService& service) {
             service.undoOperation(service.operations().front().id);
         },
         {},
         everything},
        {"delete",
         trashAll,
         [](TrashWorld& world, VeltoTrashService& service) {
             service.deletePermanently(itemOf(world, service, someFolder));
         },
         {someFolder},
         {}},
        {"empty",
         trashAll,
         [](TrashWorld&, VeltoTrashService& service) { service.emptyTrash(); },
         everything,
         {}},
        {"purge",
         [](TrashWorld& world) {
             trash(world, {someFile, someFolder});
             world.clock.time += 31_days;
             trash(world, {emptyFile});
         },
         [](TrashWorld&, VeltoTrashService& service) { service.purgeExpired(30); },
         {someFile, someFolder},
         everythingBut({someFile, someFolder, emptyFile})},
    };
    return scenarios;
}

}  // namespace velto
