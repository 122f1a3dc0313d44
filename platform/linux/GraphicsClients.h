#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SystemCounters.h"

namespace velto {

/// What /proc/<pid>/fdinfo/<number> of a graphics processor's file tells of its user
/// (Documentation/gpu/drm-usage-stats.rst of the kernel). Empty for every other file.
std::vector<EngineTime> engineTimesIn(std::string_view fdinfo);

/// How busy the graphics processors are, as the kernel tells without a maker's library.
///
/// Some drivers say it themselves (`gpu_busy_percent`). Of the others those are asked that count
/// for each of their users: the files of the user's own processes are looked through for theirs, a
/// few processes at each reading, so that a reading costs the same however many there are. What
/// sleeps is left asleep.
class GraphicsClients {
public:
    /// Where procfs and sysfs are mounted.
    GraphicsClients(std::string proc, std::string sys)
        : proc_(std::move(proc)), sys_(std::move(sys)) {}

    GraphicsCounters read();

    static constexpr int readingsBetweenSearches = 30;  // for graphics processors
    static constexpr int readingsBetweenRounds = 5;     // through the processes, at least
    static constexpr std::size_t processesPerReading = 64;
    static constexpr std::size_t linksPerReading = 2'000;
    static constexpr std::size_t mostFiles = 64;  // of users that are asked

private:
    void searchDevices();
    std::optional<double> busyNow() const;
    void searchProcesses();
    std::size_t searchProcess(const std::string& process);
    std::vector<EngineTime> askClients();

    std::string proc_;
    std::string sys_;
    int readings_ = 0;
    int nextRound_ = 0;
    std::vector<std::string> telling_;  // folders of devices that say how busy they are
    bool hasCounting_ = false;          // there is one that counts for each user
    std::vector<std::string> waiting_;  // processes that have not been looked through this time
    std::map<std::string, std::vector<std::string>> files_;  // by process, of its users
};

}  // namespace velto
