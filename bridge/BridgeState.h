#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "analysis/DiskState.h"
#include "monitor/SystemMonitor.h"
#include "platform/CancellationFlag.h"

namespace velto {

/// What the bridge is at, readable by all; the bridge and its intents alone change it. Main thread.
struct BridgeState {
    /// An analysis as the page is given it.
    struct BootState {
        DiskState state;
        double stamp = 0;  // seconds since 1970
    };

    std::vector<std::string> pendingIntents;   // every intent received; never trimmed, on purpose
    std::optional<CancellationFlag> scanTask;  // the running analysis
    bool scanRunning = false;
    std::optional<CancellationFlag> accessWatch;  // the running watch on Full Disk Access
    bool accessGranted = false;                   // last known
    bool pendingAccessRescan = false;             // analyse again when the running one ends
    std::unique_ptr<SystemMonitor> system;        // live sampling
    std::optional<BootState> bootState;           // the current analysis; none before the first one
    bool needsFirstScan = false;
    bool uninstallRunning = false;      // this window's; the gate knows of others'
    bool appsMeasuring = false;         // the sizes that follow the list
    bool maintenanceMeasuring = false;  // what the rules would move is being measured
};

}  // namespace velto
