// The power fails at every instant of every operation, and of the start that follows: whatever the
// disk may hold then, the next start of the program finds every file in full.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <ostream>
#include <unordered_set>

#include "scenarios.h"
#include "support/exhaustive.h"

namespace velto {
namespace {

struct Case {
    DurableScenario scenario;
    Durability durability;
};

void PrintTo(const Case& one, std::ostream* stream) { *stream << one.scenario.name; }

struct Bounds {
    std::size_t states;    // of one instant, above which they are sampled
    std::size_t nested;    // states of the next start, of which each is followed by another loss
    std::size_t restarts;  // one of so many starts is cut off as well
};

class PowerLoss : public testing::TestWithParam<Case> {
protected:
    void run(std::mt19937_64::result_type seed) {
        random_.seed(seed);
        seed_ = seed;
        const DurableScenario& scenario = GetParam().scenario;
        world_.disk.knowsExclusiveRename = scenario.knowsExclusiveRename;
        scenario.prepare(world_);
        world_.disk.settle();
        {
            const auto process = world_.process();
            process->start();
            scenario.act(world_, *process);
        }
        EXPECT_GT(world_.disk.log().size(), 1U) << "nothing was changed";
        cutEverywhere(world_.disk, bounds_.states,
                      [&](const ModelCrash& crash, const auto& state, std::size_t cut) {
                          restart(crash.image(state), [&] { return report(crash, state, cut); });
                      });
    }

    /// Before a sync there are all the states that there were since the one before it.
    template <typename Visit>
    void cutEverywhere(const ModelDisk& disk, std::size_t bound, Visit visit) {
        const ModelLog& log = disk.log();
        std::size_t start = 0;
        for (std::size_t cut = 0; cut <= log.size() && !HasFailure(); ++cut) {
            const bool isBarrier = cut == log.size() || log[cut].kind == ModelChange::Kind::sync ||
                                   log[cut].kind == ModelChange::Kind::flush;
            if (!isBarrier) continue;
            bool isComplete = cutAt(disk, cut, bound, visit);
            for (std::size_t earlier = cut; !isComplete && earlier-- > start;)
                isComplete = cutAt(disk, earlier, bound, visit);
            start = cut + 1;
        }
    }

    template <typename Visit>
    bool cutAt(const ModelDisk& disk, std::size_t cut, std::size_t bound, Visit visit) {
        const ModelCrash crash(disk, cut, GetParam().durability);
        ++instants;
        const bool isComplete = crash.run(bound, random_, [&](const ModelCrash::State& state) {
            ++states;
            if (!HasFailure()) visit(crash, state, cut);
        });
        if (!isComplete) ++sampled;
        return isComplete;
    }

    template <typename Report>
    void restart(const ModelImage& image, Report report) {
        if (!seen_.insert(image.fingerprint()).second) return;
        ModelDisk after(image);
        after.knowsExclusiveRename = world_.disk.knowsExclusiveRename;
        prove(after, report);
        if (HasFailure() || restarts++ % bounds_.restarts != 0) return;
        ModelDisk again(image);
        again.knowsExclusiveRename = world_.disk.knowsExclusiveRename;
        world_.process(again)->start();
        cutEverywhere(again, bounds_.nested,
                      [&](const ModelCrash& crash, const auto& state, std::size_t cut) {
                          ModelImage second = crash.image(state);
                          if (!seen_.insert(second.fingerprint()).second) return;
                          ModelDisk disk(second);
                          disk.knowsExclusiveRename = world_.disk.knowsExclusiveRename;
                          prove(disk, [&] {
                              return report() + "and then, in the start that followed,\n" +
                                     this->report(crash, state, cut);
                          });
                      });
    }

    template <typename Report>
    void prove(ModelDisk& after, Report report) {
        ++executions;
        const bool mayBeInTwoPlaces = GetParam().durability == Durability::posix;
        const auto findings = world_.examine(after, GetParam().scenario.deleted, mayBeInTwoPlaces);
        leftovers += findings.leftovers > 0 ? 1 : 0;
        if (findings.broken.empty()) return;
        std::string text;
        for (const std::string& broken : findings.broken)
            text += broken + "\n";
        ADD_FAILURE() << text << "seed " << seed_ << "\n" << report();
    }

    static std::string report(const ModelCrash& crash, const ModelCrash::State& state,
                              std::size_t cut) {
        return "cut at " + std::to_string(cut) + ", which leaves out\n" + crash.missing(state);
    }

    void TearDown() override {
        RecordProperty("instants", std::to_string(instants));
        RecordProperty("states", std::to_string(states));
        RecordProperty("executions", std::to_string(executions));
        std::printf(
            "%zu instants (%zu sampled, seed %llu), %zu states, %zu starts, "
            "%zu with leftovers\n",
            instants, sampled, static_cast<unsigned long long>(seed_), states, executions,
            leftovers);
    }

    DurableWorld world_;
    Bounds bounds_ = isExhaustive() ? Bounds{.states = 4'096, .nested = 64, .restarts = 3}
                                    : Bounds{.states = 16, .nested = 8, .restarts = 20};
    std::mt19937_64 random_;
    std::mt19937_64::result_type seed_ = 0;
    std::unordered_set<std::string> seen_;
    std::size_t instants = 0, sampled = 0, states = 0, executions = 0, leftovers = 0, restarts = 0;
};

TEST_P(PowerLoss, LosesNothing) { run(20'260'101); }

std::vector<Case> casesOf(Durability durability) {
    std::vector<Case> cases;
    for (const DurableScenario& scenario : durableScenarios())
        cases.push_back({scenario, durability});
    return cases;
}

const auto nameOf = [](const auto& one) { return std::string(one.param.scenario.name); };

INSTANTIATE_TEST_SUITE_P(Ext4, PowerLoss, testing::ValuesIn(casesOf(Durability::ext4Ordered)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Posix, PowerLoss, testing::ValuesIn(casesOf(Durability::posix)), nameOf);

}  // namespace
}  // namespace velto
