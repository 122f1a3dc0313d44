#pragma once

#include <gtest/gtest.h>

#include "monitor/SystemMonitor.h"
#include "support/FakeSerialQueue.h"
#include "support/FakeSystemCounters.h"
#include "support/fakes.h"

namespace velto {

/// A monitor of a made machine whose time and queue are in the test's hands.
struct MonitorFixture : testing::Test {
    FakeSystemCounters counters;
    FakeProcessTable table;
    FakeVolumeInfo volumes;
    FakeClock clock;
    ApplicationActivity activity;
    std::shared_ptr<FakeSerialQueue::Control> queue = std::make_shared<FakeSerialQueue::Control>();
    std::vector<std::string> drawn;  // paths whose icon was asked for
    std::vector<sampling::Dictionary> samples;
    std::unique_ptr<SystemMonitor> monitor = makeMonitor();

    std::unique_ptr<SystemMonitor> makeMonitor() {
        auto made = std::make_unique<SystemMonitor>(
            MonitorContext{.counters = counters,
                           .processes = table,
                           .volumes = volumes,
                           .clock = clock,
                           .activity = activity,
                           .startupVolume = "/",
                           .icon =
                               [this](const std::string& path, int points) {
                                   drawn.push_back(path);
                                   return path.find("faceless") == std::string::npos
                                              ? std::optional("icon:" + std::to_string(points))
                                              : std::nullopt;
                               },
                           .ownIdentifier = "app.velto"},
            std::make_unique<FakeSerialQueue>(queue));
        made->onSample = [this](const sampling::Dictionary& sample) { samples.push_back(sample); };
        return made;
    }

    /// Lets so many seconds pass for the queue's timers and the clock alike.
    void pass(double seconds) {
        const double offset = clock.time - queue->time;
        queue->advance(seconds, [&](double time) { clock.time = offset + time; });
        clock.time = offset + queue->time;
    }

    /// A sample as the timer would take it two seconds after the last one.
    sampling::Dictionary nextSample(double seconds = 2) {
        clock.time += seconds;
        return monitor->sample();
    }
};

}  // namespace velto
