#pragma once

#include <functional>
#include <iosfwd>
#include <set>
#include <string>
#include <vector>

#include "DurableWorld.h"

namespace velto {

/// One thing that the program does, in the middle of which the power fails.
struct DurableScenario {
    const char* name;
    /// Done before; all of it has reached the disk.
    std::function<void(DurableWorld& world)> prepare;
    std::function<void(DurableWorld& world, DurableProcess& process)> act;
    /// What it deletes for good, relative to the home.
    std::set<std::string> deleted = {};
    bool knowsExclusiveRename = true;
};

/// For the test's report.
void PrintTo(const DurableScenario& scenario, std::ostream* stream);

std::vector<DurableScenario> durableScenarios();

}  // namespace velto
