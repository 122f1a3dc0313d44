// A walk that goes by an earlier one, beside a walk of everything: random homes, random changes.

#include <gtest/gtest.h>

#include "analysis/again/AgainFixture.h"
#include "analysis/again/MadeHome.h"
#include "support/exhaustive.h"

namespace velto {
namespace {

constexpr int walks = 8;  // of each home, one after another

class WalkAgain : public testing::TestWithParam<unsigned> {};

TEST_P(WalkAgain, FindsExactlyWhatAWalkOfEverythingFinds) {
    SCOPED_TRACE("seed " + std::to_string(GetParam()));
    AgainMachine machine;
    MadeHome home(machine.reader, machine.home, GetParam());
    if (home.upTo(2) == 0) machine.machine.grantAccess();
    auto& clock = machine.machine.clock.time;
    home.now = clock;
    home.grow();
    std::vector<std::string> excluded;
    while (home.upTo(2) == 0)
        excluded.push_back(home.anyFolder());
    machine.scan(excluded);
    home.lastWalk = clock;

    int partial = 0;
    for (int walk = 1; walk < walks; ++walk) {
        clock += 600 + home.upTo(20'000);
        home.now = clock - home.upTo(500);
        for (unsigned changes = home.upTo(12); changes > 0; --changes)
            home.change();
        machine.machine.changes.changes = home.takeTold();
        machine.machine.changes.event += 10;
        const auto again = machine.scan(excluded);
        home.lastWalk = clock;
        EXPECT_TRUE(again.doubt == WalkDoubt::none || again.doubt == WalkDoubt::tooManyChanges ||
                    again.doubt == WalkDoubt::notOneWalk)
            << textOf(again.doubt);
        if (again.doubt == WalkDoubt::none) ++partial;
        expectEqual(again.result, machine.wholeScan(excluded));
        if (HasFailure()) {
            ADD_FAILURE() << "walk " << walk;
            return;
        }
    }
    RecordProperty("partial", partial);
    EXPECT_GT(partial, 0) << "every walk read everything";
}

TEST_P(WalkAgain, IsRightAlsoWhenNobodyIsToldOfANewNameOfAFile) {
    SCOPED_TRACE("seed " + std::to_string(GetParam()));
    AgainMachine machine;
    MadeHome home(machine.reader, machine.home, GetParam() + 5'000);
    home.tellsOfLinks = false;
    home.now = machine.machine.clock.time;
    home.grow();
    machine.scan();
    home.lastWalk = machine.machine.clock.time;
    for (int walk = 1; walk < walks; ++walk) {
        home.now = machine.machine.clock.time += 20'000;
        for (int changes = 0; changes < 3; ++changes)
            home.change();
        machine.machine.changes.changes = home.takeTold();
        const auto again = machine.scan();
        home.lastWalk = home.now;
        expectEqual(again.result, machine.wholeScan());
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, WalkAgain, testing::Range(1U, isExhaustive() ? 121U : 31U));

}  // namespace
}  // namespace velto
