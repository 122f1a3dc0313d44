#include "platform/processor_use.h"

#include <atomic>
#include <filesystem>

#include <gtest/gtest.h>

#include "platform/parallel.h"

namespace velto {
namespace {

TEST(ProcessorUse, WhatAThreadUsesAndHowLongItStandsInLineIsCounted) {
    if (!std::filesystem::exists("/proc/self/schedstat")) GTEST_SKIP() << "no scheduler statistics";
    const ProcessorUse before = processorUse();
    ProcessorUse after;
    // Three threads for each processor, until one of them has seen what is to be seen.
    std::atomic<bool> isSeen = false;
    const std::size_t threads = 3 * processorCount();
    forEachInParallel(threads, threads, [&](std::size_t, std::size_t thread) {
        for (int look = 0; !isSeen; look += thread == 0 ? 1 : 0) {
            if (thread != 0) continue;
            after = processorUse();
            isSeen = (after.used > before.used && after.delayed > before.delayed) || look == 20'000;
        }
    });
    EXPECT_GT(after.used, before.used);
    EXPECT_GT(after.delayed, before.delayed);
}

}  // namespace
}  // namespace velto
