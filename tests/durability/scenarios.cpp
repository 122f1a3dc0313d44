#include "scenarios.h"

#include <ostream>

namespace velto {
namespace {

using World = DurableWorld;
using Process = DurableProcess;
using Act = std::function<void(World&, Process&)>;
using Prepare = std::function<void(World&)>;

void nothing(World&) {}

std::string itemOf(World& world, Process& process, const std::string& relative) {
    for (const TrashItem& item : process.trash.items()) {
        if (item.originalPath == world.path(relative)) return item.id;
    }
    return {};
}

Act move(const std::vector<std::string>& relatives) {
    return [=](World& world, Process& process) {
        process.trash.moveToTrash(world.paths(relatives), "wind");
    };
}

Prepare moved(const std::vector<std::string>& relatives) {
    return [=](World& world) { move(relatives)(world, *world.process()); };
}

Act restore(const char* relative) {
    return [=](World& world, Process& process) {
        process.trash.restore(itemOf(world, process, relative));
    };
}

void undo(World&, Process& process) {
    process.trash.undoOperation(process.trash.operations().front().id);
}

Act toCloud(const char* relative) {
    return [=](World& world, Process& process) { process.cloud.moveTo({world.path(relative)}); };
}

Act fromCloud(const char* relative) {
    return [=](World& world, Process& process) { process.cloud.moveFrom({world.path(relative)}); };
}

Prepare inCloud(const char* relative) {
    return [=](World& world) { toCloud(relative)(world, *world.process()); };
}

Act uninstall(const char* relative) {
    return [=](World& world, Process& process) { process.removal.remove(world.path(relative)); };
}

/// A move that the history tells of, as the page asks for it.
void cleanUp(World& world, Process& process) {
    world.histories.push_back(idsOf(process.history));
    process.history.record(process.trash.moveToTrash({world.path(World::file)}, "wind"));
    world.histories.push_back(idsOf(process.history));
}

void takeCleanUpBack(World& world, Process& process) {
    const std::string id = process.trash.operations().front().id;
    process.trash.undoOperation(id);
    process.history.remove(id);
    world.histories.push_back(idsOf(process.history));
}

void expire(World& world) {
    moved({World::file, World::outerFolder})(world);
    world.now += 31 * 86'400;
    moved({World::folder})(world);
}

Prepare then(const Prepare& first, const Prepare& second) {
    return [=](World& world) {
        first(world);
        second(world);
    };
}

Prepare without(const char* relative) {
    return [=](World& world) { world.takeAway(relative); };
}

void takePlace(World& world) { world.putBystander(World::file, "somebody else's"); }

}  // namespace

void PrintTo(const DurableScenario& scenario, std::ostream* stream) { *stream << scenario.name; }

std::vector<DurableScenario> durableScenarios() {
    constexpr auto file = World::file;
    constexpr auto folder = World::folder;
    constexpr auto outerFile = World::outerFile;
    constexpr auto outerFolder = World::outerFolder;
    const std::set<std::string> everything{file, folder, outerFile, outerFolder};
    return {
        {"move_file", nothing, move({file})},
        {"move_folder", nothing, move({folder})},
        {"move_file_of_another_volume", nothing, move({outerFile})},
        {"move_folder_of_another_volume", nothing, move({outerFolder})},
        {"move_several", moved({file}), move({folder, outerFile, outerFolder})},
        {"move_by_names", nothing, move({file, folder}), {}, false},
        {"restore_file", moved(World::all()), restore(file)},
        {"restore_folder", moved(World::all()), restore(folder)},
        {"restore_to_another_volume", moved(World::all()), restore(outerFolder)},
        {"restore_to_a_taken_place", then(moved(World::all()), takePlace), restore(file)},
        {"restore_to_a_missing_folder", then(moved(World::all()), without("Downloads")),
         restore(file)},
        {"restore_by_names", moved({file, folder}), undo, {}, false},
        {"undo", moved(World::all()), undo},
        {"delete_file",
         moved(World::all()),
         [](World& world, Process& process) {
             process.trash.deletePermanently(itemOf(world, process, file));
         },
         {file}},
        {"delete_folder",
         moved(World::all()),
         [](World& world, Process& process) {
             process.trash.deletePermanently(itemOf(world, process, folder));
         },
         {folder}},
        {"empty", moved(World::all()), [](World&, Process& process) { process.trash.emptyTrash(); },
         everything},
        {"purge",
         expire,
         [](World&, Process& process) { process.trash.purgeExpired(30); },
         {file, outerFolder}},
        {"history_add", nothing, cleanUp},
        {"history_undo", [](World& world) { cleanUp(world, *world.process()); }, takeCleanUpBack},
        {"history_clear", [](World& world) { cleanUp(world, *world.process()); },
         [](World& world, Process& process) {
             process.history.clear();
             world.histories.push_back({});
         }},
        {"cloud_in", nothing, toCloud(folder)},
        {"cloud_in_from_another_volume", nothing, toCloud(outerFolder)},
        {"cloud_in_by_names", nothing, toCloud(file), {}, false},
        {"cloud_out", inCloud(file), fromCloud(file)},
        {"cloud_out_to_another_volume", inCloud(outerFolder), fromCloud(outerFolder)},
        {"cloud_out_to_downloads", then(inCloud(folder), without("Documents")), fromCloud(folder)},
        {"uninstall_file", nothing, uninstall(file), {file}},
        {"uninstall_folder", nothing, uninstall(folder), {folder}},
        {"uninstall_folder_of_another_volume", nothing, uninstall(outerFolder), {outerFolder}},
        {"uninstall_folder_by_names", nothing, uninstall(folder), {folder}, false},
    };
}

}  // namespace velto
