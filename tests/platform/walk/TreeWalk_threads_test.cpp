#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/walk/TreeWalk.h"
#include "support/FakeDirectoryReader.h"

namespace velto {
namespace {

using namespace std::chrono_literals;

class FileCounter final : public TreeVisitor {
public:
    void file(const WalkedFolder&, const DirectoryEntry&, const Place*) override { ++files; }
    std::size_t files = 0;
};

/// How many threads read at once: each that reads waits until so many do, or long enough.
class Meeting {
public:
    explicit Meeting(std::size_t wanted) : wanted_(wanted) {}

    void attend() {
        std::unique_lock guard(lock_);
        most_ = std::max(most_, ++present_);
        arrived_.notify_all();
        arrived_.wait_for(guard, patience, [this] { return most_ >= wanted_; });
        --present_;
    }

    std::size_t most() const { return most_; }

    /// Far more than the ticks that it takes for all threads to be there.
    std::chrono::milliseconds patience{20s};

private:
    const std::size_t wanted_;
    std::size_t present_ = 0;
    std::size_t most_ = 0;
    std::mutex lock_;
    std::condition_variable arrived_;
};

/// How often the pace has been asked, which reads can wait for: a walk then takes as many ticks as
/// a test wants, however fast the machine is.
class Ticks {
public:
    std::size_t next() {
        const std::lock_guard guard(lock_);
        passed_.notify_all();
        return ++count_;
    }

    void await(std::size_t count) {
        std::unique_lock guard(lock_);
        passed_.wait(guard, [&] { return count_ >= count; });
    }

    std::size_t count() const { return count_; }

private:
    std::size_t count_ = 0;
    std::mutex lock_;
    std::condition_variable passed_;
};

struct TreeWalkThreadsTest : testing::Test {
    TreeWalkThreadsTest() {
        for (std::size_t folder = 0; folder < folders; ++folder)
            reader.file("/home/" + std::to_string(folder) + "/inner/file", 1);
    }

    /// Files met by all of them.
    std::size_t walk(std::size_t threads) {
        std::vector<std::unique_ptr<FileCounter>> counters;
        std::vector<TreeVisitor*> visitors;
        for (std::size_t index = 0; index < threads; ++index)
            visitors.push_back(counters.emplace_back(std::make_unique<FileCounter>()).get());
        TreeWalk(reader).run({{.path = "/home"}}, visitors, options);
        std::size_t files = 0;
        for (const auto& counter : counters)
            files += counter->files;
        return files;
    }

    static constexpr std::size_t folders = 200;
    FakeDirectoryReader reader;
    WalkOptions options;
};

TEST_F(TreeWalkThreadsTest, TheyJoinWhileTheProcessorsAreIdle) {
    Meeting meeting(8);
    reader.beforeRead = [&](const auto& folder) {
        if (folder.name == "inner") meeting.attend();
    };
    options.firstThreads = 2;
    options.processorUse = [] { return ProcessorUse(); };
    EXPECT_EQ(walk(8), folders);
    EXPECT_EQ(meeting.most(), 8U);
}

TEST_F(TreeWalkThreadsTest, ThoseOfABusyWalkStayAlone) {
    Meeting meeting(3);
    meeting.patience = 2ms;
    reader.beforeRead = [&](const auto& folder) {
        if (folder.name == "inner") meeting.attend();
    };
    options.firstThreads = 2;
    options.processorUse = [used = 0.0]() mutable { return ProcessorUse{used += 1000}; };
    EXPECT_EQ(walk(8), folders);
    EXPECT_LE(meeting.most(), 2U);
}

// Joining, pausing and resuming in every order that the moment brings about: each file is met once,
// and the walk ends.
TEST_F(TreeWalkThreadsTest, WhateverThePaceNothingIsMetTwiceOrMissed) {
    Ticks ticks;
    std::atomic<std::size_t> read{0};
    double used = 0;
    options.firstThreads = 1;
    options.processorUse = [&] {
        return ProcessorUse{ticks.next() % 3 == 0 ? used : used += 1000};
    };
    reader.beforeRead = [&](const auto&) { ticks.await(++read / 40); };
    EXPECT_EQ(walk(6), folders);
    EXPECT_GE(ticks.count(), 10U);
}

TEST_F(TreeWalkThreadsTest, AFailureEndsThoseThatPauseToo) {
    Ticks ticks;
    std::atomic<std::size_t> read{0};
    double used = 0;
    options.firstThreads = 1;
    // All join, then all but one pause.
    options.processorUse = [&] { return ProcessorUse{ticks.next() < 5 ? used : used += 1000}; };
    reader.beforeRead = [&](const auto&) {
        const std::size_t number = ++read;
        ticks.await(number / 20);
        if (number == folders) throw std::runtime_error("the reader fails");
    };
    EXPECT_THROW(walk(6), std::runtime_error);
}

}  // namespace
}  // namespace velto
