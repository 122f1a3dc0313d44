#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "ScannerFixture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

/// A clock that several threads may read while one of them moves it on.
class SharedClock final : public Clock {
public:
    double now() const override { return monotonic(); }
    double monotonic() const override { return static_cast<double>(milliseconds_) / 1000; }
    void advance(int milliseconds) { milliseconds_ += milliseconds; }

private:
    std::atomic<std::int64_t> milliseconds_{1'000'000};
};

struct ScannerProgress : ScannerFixture {
    ScannerProgress() {
        progress = [this](std::int64_t files, double gb) {
            calls.emplace_back(files, gb);
            times.push_back(clock.monotonic());
            {
                const std::lock_guard guard(lock);
                ++callCount;
            }
            called.notify_all();
        };
    }

    void waitForCalls(int count) {
        std::unique_lock guard(lock);
        called.wait(guard, [&] { return callCount >= count; });
    }

    SharedClock& clock = install<SharedClock>(machine.platform.clock);
    std::vector<std::pair<std::int64_t, double>> calls;
    std::vector<double> times;
    std::mutex lock;
    std::condition_variable called;
    int callCount = 0;
};

TEST_F(ScannerProgress, AWalkThatTakesNoTimeReportsNothing) {
    for (int index = 0; index < 1'000; ++index)
        file("Music/" + std::to_string(index), 10);
    scan();
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(ScannerProgress, WhatWasCountedSoFarIsReportedWhileTheWalkGoesOn) {
    file("Music/1", 500'000'000);
    file("Music/deeper/2", 250'000'000);
    // The folder below can only be read once the progress up to it has been reported.
    reader.beforeRead = [&](const FakeDirectoryReader::Node& folder) {
        if (folder.name != "deeper") return;
        clock.advance(201);
        waitForCalls(1);
    };
    scan();
    EXPECT_THAT(calls, ElementsAre(Pair(1, 0.5)));
    EXPECT_EQ(scanner.filesScanned, 2);
}

TEST_F(ScannerProgress, NoTwoReportsAreLessThanAFifthOfASecondApart) {
    FakeDirectoryReader::Node* parent = &folder("Music");
    for (int level = 0; level < 100; ++level) {
        reader.fileIn(*parent, "file", 10);
        parent = &reader.folderIn(*parent, "n");
    }
    const double start = clock.monotonic();
    int reads = 0;
    // Every read takes 0.1 seconds; every tenth waits for the report that is due by then.
    reader.beforeRead = [&](const FakeDirectoryReader::Node&) {
        clock.advance(100);
        if (++reads % 10 == 0) waitForCalls(reads / 10);
    };
    scan();
    ASSERT_GE(times.size(), 10u);
    double last = start;
    std::int64_t files = 0;
    for (std::size_t index = 0; index < times.size(); ++index) {
        EXPECT_GT(times[index] - last, 0.2 - 1e-9);
        EXPECT_GE(calls[index].first, files);
        last = times[index];
        files = calls[index].first;
    }
}

TEST_F(ScannerProgress, ExactlyAFifthOfASecondIsNotYetTime) {
    folder("Music/1/2");
    reader.beforeRead = [&](const FakeDirectoryReader::Node& folder) {
        if (folder.name == "1") clock.advance(200);
    };
    scan();
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(ScannerProgress, ReportsComeOnTheThreadThatAskedForTheWalk) {
    folder("Music");
    std::thread::id reporter;
    reader.beforeRead = [&](const FakeDirectoryReader::Node& folder) {
        if (folder.name != "Music") return;
        clock.advance(1'000);
        waitForCalls(1);
    };
    progress = [&reporter, count = progress](std::int64_t files, double gb) {
        reporter = std::this_thread::get_id();
        count(files, gb);
    };
    scan();
    EXPECT_EQ(reporter, std::this_thread::get_id());
}

TEST_F(ScannerProgress, CancellingFromAReportEndsTheWalkWithItsError) {
    for (int index = 0; index < 100; ++index) {
        file("Music/" + std::to_string(index) + "/a", 10);
    }
    reader.beforeRead = [&](const FakeDirectoryReader::Node& folder) {
        if (folder.name != "50") return;
        clock.advance(1'000);
        waitForCalls(1);
    };
    progress = [this, count = progress](std::int64_t files, double gb) {
        cancelled.cancel();
        count(files, gb);
    };
    EXPECT_THROW(scan(), CancellationError);
    EXPECT_LT(scanner.filesScanned, 100);
    EXPECT_EQ(reader.openNow(), 0);
    EXPECT_THAT(machine.log.lines(),
                testing::Not(testing::Contains(testing::HasSubstr("recorrido completo"))));
}

TEST_F(ScannerProgress, AWalkWithoutAListenerIsFine) {
    folder("Music");
    reader.beforeRead = [&](const FakeDirectoryReader::Node&) { clock.advance(1'000); };
    progress = nullptr;
    EXPECT_NO_THROW(scan());
}

}  // namespace
}  // namespace velto
