#pragma once

#include <functional>
#include <iosfwd>
#include <set>
#include <string>
#include <vector>

#include "TrashWorld.h"

namespace velto {

/// One change of the trash that a test cuts off or lets fail somewhere in the middle.
struct TrashScenario {
    const char* name;
    /// Done before, without interruption.
    std::function<void(TrashWorld& world)> prepare;
    /// What is cut off.
    std::function<void(TrashWorld& world, VeltoTrashService& service)> act;
    /// What the action deletes for good.
    std::set<std::string> deleted;
    /// What is in the home when it has come to its end; everything else is in the trash.
    std::set<std::string> home;
};

/// Where the home and the trash lie, and what the systems there can do.
struct TrashVolumes {
    std::string home, trash;
    bool knowsExclusiveRename = true;
};

/// For the test's report.
void PrintTo(const TrashScenario& scenario, std::ostream* stream);

/// Each way to change a trash, in a world with `keepMany`.
const std::vector<TrashScenario>& trashScenarios();

}  // namespace velto
