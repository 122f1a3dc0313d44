#include "bridge/WorkProgress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "support/FakeDispatcher.h"
#include "support/FakeTaskBar.h"
#include "support/fakes.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

class WorkProgressTest : public testing::Test {
protected:
    WorkProgressTest() { progress_.show(&taskBar_); }

    void pass(double seconds) {
        // In small steps: what becomes due sees the time at which it does.
        for (double passed = 0; passed < seconds; passed += 0.05) {
            clock_.time += 0.05;
            dispatcher_.runMain();
            dispatcher_.advance(0.05);
        }
    }

    FakeDispatcher dispatcher_;
    FakeClock clock_;
    FakeTaskBar taskBar_;
    WorkProgress progress_{dispatcher_, clock_};
};

TEST_F(WorkProgressTest, NothingIsToldAndNoTimerRunsWhileNothingRuns) {
    pass(10);
    EXPECT_THAT(taskBar_.told, IsEmpty());
    EXPECT_EQ(dispatcher_.waitingTimers(), 0U);
}

TEST_F(WorkProgressTest, WhatIsOverInAMomentIsNeverShown) {
    for (int count = 0; count < 3; ++count) {
        auto work = progress_.begin();
        pass(0.5);
        work.reset();
        pass(0.1);
    }
    pass(5);
    EXPECT_THAT(taskBar_.told, IsEmpty());
}

TEST_F(WorkProgressTest, WhatTakesLongerIsShownUntilItIsOver) {
    auto work = progress_.begin();
    pass(30);
    EXPECT_THAT(taskBar_.told, ElementsAre("busy"));
    work.reset();
    dispatcher_.runMain();
    EXPECT_THAT(taskBar_.told, ElementsAre("busy", "hidden"));
    pass(30);
    EXPECT_THAT(taskBar_.told, SizeIs(2));
    EXPECT_EQ(dispatcher_.waitingTimers(), 0U);
}

TEST_F(WorkProgressTest, AKnownPartIsShownAFewTimesASecondAndItsLastValueArrives) {
    const auto work = progress_.begin(0.0);
    pass(2);
    ASSERT_THAT(taskBar_.told, ElementsAre("0%"));
    for (int step = 1; step <= 60; ++step) {
        work->report(step / 100.0);
        pass(0.05);
    }
    pass(1);
    EXPECT_THAT(taskBar_.told.size(), Le(1U + 3 * 4 + 1));
    EXPECT_GE(taskBar_.told.size(), 8U);
    EXPECT_EQ(taskBar_.told.back(), "60%");
}

TEST_F(WorkProgressTest, TheSameIsNotToldTwice) {
    const auto work = progress_.begin(0.5);
    pass(2);
    work->report(0.5);
    work->report(0.501);
    pass(2);
    EXPECT_THAT(taskBar_.told, ElementsAre("50%"));
}

TEST_F(WorkProgressTest, OfSeveralTheLeastIsShownAndNoPartWhenOneIsNotKnown) {
    const auto first = progress_.begin(0.8);
    auto second = progress_.begin(0.2);
    pass(2);
    auto third = progress_.begin();
    pass(2);
    third.reset();
    pass(2);
    second.reset();
    pass(2);
    EXPECT_THAT(taskBar_.told, ElementsAre("20%", "busy", "20%", "80%"));
}

TEST_F(WorkProgressTest, TheEndOfTheProgramTakesItAwayAndShowsNothingAnyMore) {
    const auto work = progress_.begin();
    pass(2);
    progress_.show(nullptr);
    EXPECT_THAT(taskBar_.told, ElementsAre("busy", "hidden"));
    const auto another = progress_.begin();
    pass(5);
    EXPECT_THAT(taskBar_.told, SizeIs(2));
}

TEST_F(WorkProgressTest, WorkOutlivesWhatShowsIt) {
    auto gone = std::make_unique<WorkProgress>(dispatcher_, clock_);
    gone->show(&taskBar_);
    auto work = gone->begin();
    pass(2);
    gone->show(nullptr);
    gone.reset();
    work->report(0.5);
    work.reset();
    pass(2);
    EXPECT_THAT(taskBar_.told, ElementsAre("busy", "hidden"));
}

}  // namespace
}  // namespace velto
