// Samples of the machine that runs the test, beside what the system itself says meanwhile.
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <sstream>
#include <string>

#include <fmt/format.h>

#include "monitor/MonitorFixture.h"
#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/LinuxSystemCounters.h"
#include "platform/linux/LinuxVolumeInfo.h"
#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

using sampling::Dictionary;

// Others use the machine between two readings; in one of many tries hardly. A figure that is made
// up differently agrees in none.
constexpr int tries = 50;

struct LiveSample : testing::Test {
    LinuxSystemCounters counters;
    LinuxProcessTable table{{}};
    LinuxVolumeInfo volumes;
    FakeClock clock;
    ApplicationActivity activity;
    SystemMonitor monitor{
        MonitorContext{.counters = counters,
                       .processes = table,
                       .volumes = volumes,
                       .clock = clock,
                       .activity = activity,
                       .startupVolume = "/",
                       .icon = {}},
        std::make_unique<FakeSerialQueue>(std::make_shared<FakeSerialQueue::Control>())};

    Dictionary sample() {
        clock.time += SystemMonitor::period;
        return monitor.sample();
    }
};

struct Ticks {
    double idle = 0, total = 0;
};

Ticks ticksNow() {
    std::istringstream words(kernelText("/proc/stat").value_or(""));
    std::string label;
    words >> label;
    Ticks ticks;
    for (int field = 0; field < 8; ++field) {
        double value = 0;
        words >> value;
        ticks.total += value;
        if (field == 3 || field == 4) ticks.idle += value;
    }
    return ticks;
}

TEST_F(LiveSample, TheProcessorsShareIsThatOfTheSystemWithinOnePoint) {
    double ours = 0, theirs = 100;
    for (int attempt = 0; attempt < tries && std::abs(ours - theirs) > 1; ++attempt) {
        const Ticks before = ticksNow();
        sample();
        Ticks after = ticksNow();
        while (after.total < before.total + 200)
            after = ticksNow();
        const Dictionary second = sample();
        after = ticksNow();
        ASSERT_TRUE(second.contains("cpu"));
        ours = second["cpu"]["pct"];
        theirs = 100 * (1 - (after.idle - before.idle) / (after.total - before.total));
    }
    EXPECT_NEAR(ours, theirs, 1);
}

/// What free(1) counts in bytes: total, used, free, shared, cache and available.
std::array<double, 6> freeFigures() {
    struct Close {
        void operator()(FILE* stream) const { ::pclose(stream); }
    };
    const std::unique_ptr<FILE, Close> stream(::popen("LC_ALL=C free -b 2>/dev/null", "r"));
    std::array<double, 6> figures{};
    std::array<char, 256> line{};
    while (stream && std::fgets(line.data(), line.size(), stream.get()) != nullptr) {
        if (std::sscanf(line.data(), "Mem: %lf %lf %lf %lf %lf %lf", &figures[0], &figures[1],
                        &figures[2], &figures[3], &figures[4], &figures[5]) > 0)
            break;
    }
    return figures;
}

TEST_F(LiveSample, MemoryIsWhatFreeSaysWithinOneInAHundred) {
    if (freeFigures()[5] <= 0) GTEST_SKIP() << "free(1) is not installed, or an old one";
    bool agrees = false;
    std::string last;
    for (int attempt = 0; attempt < tries && !agrees; ++attempt) {
        const Dictionary mem = sample()["mem"];
        const auto [total, used, unused, shared, cache, available] = freeFigures();
        const double ourTotal = mem["total"], ourUsed = mem["used"], cached = mem["cached"];
        const auto isNear = [&, all = total](double gigabytes, double bytes) {
            return std::abs(gigabytes * 1e9 - bytes) <= 0.01 * all;
        };
        agrees = isNear(ourTotal, total) && isNear(ourTotal - ourUsed - cached, unused) &&
                 isNear(cached, cache - shared) && isNear(ourUsed, total - unused - cache + shared);
        last = fmt::format("{} beside used {}, free {}, cache {}, available {}", mem.dump(), used,
                           unused, cache, available);
    }
    EXPECT_TRUE(agrees) << last;
}

/// Received and sent bytes of each interface, as the system writes them.
std::map<std::string, std::pair<double, double>> trafficNow() {
    std::istringstream lines(kernelText("/proc/net/dev").value_or(""));
    std::map<std::string, std::pair<double, double>> traffic;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        std::istringstream words(line.substr(colon + 1));
        std::array<double, 9> figures{};
        for (double& one : figures)
            words >> one;
        traffic[line.substr(line.find_first_not_of(' '), colon - line.find_first_not_of(' '))] = {
            figures[0], figures[8]};
    }
    return traffic;
}

TEST_F(LiveSample, TrafficIsThatOfTheCountedInterfacesToTheByte) {
    const auto counted = counters.interfaces();
    if (!counted || counted->empty()) GTEST_SKIP() << "this machine has no interface";
    const auto sumNow = [&] {
        const auto all = trafficNow();
        std::pair<double, double> sum{};
        for (const InterfaceCounters& one : *counted) {
            sum.first += all.at(one.name).first;
            sum.second += all.at(one.name).second;
        }
        return sum;
    };
    // A reading is known to the byte when the counters were the same before and after it.
    std::optional<std::pair<double, double>> earlier;
    int compared = 0;
    for (int attempt = 0; attempt < tries; ++attempt) {
        const auto before = sumNow();
        const Dictionary taken = sample();
        if (sumNow() != before) {
            earlier.reset();
            continue;
        }
        if (earlier) {
            ++compared;
            const double period = SystemMonitor::period;
            EXPECT_NEAR(taken["net"]["down"].get<double>() * period, before.first - earlier->first,
                        1e-6);
            EXPECT_NEAR(taken["net"]["up"].get<double>() * period, before.second - earlier->second,
                        1e-6);
        }
        earlier = before;
    }
    EXPECT_GT(compared, 0) << "the network was never still";
}

}  // namespace
}  // namespace velto
