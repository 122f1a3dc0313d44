#pragma once

#include <map>
#include <memory>

#include "platform/Dispatcher.h"
#include "platform/RunningApplications.h"

namespace velto {

/// Running programs from /proc.
class LinuxRunningApplications final : public RunningApplications {
public:
    /// The dispatcher outlives the object.
    explicit LinuxRunningApplications(Dispatcher& dispatcher) : dispatcher_(dispatcher) {}

    std::vector<RunningApplication> list() override;
    std::unique_ptr<ProcessControl> control(const RunningApplication& application) override;
    void observe(std::function<void(const RunningApplication&)> used) override;

    /// Looks for what has started or ended since the last look, as `observe` does by itself.
    void look();

    static constexpr double secondsBetweenLooks = 5;

private:
    void lookLater();
    void lookThrough(const std::vector<std::int64_t>& numbers,
                     const std::function<void(const RunningApplication&)>& tell);

    Dispatcher& dispatcher_;
    std::function<void(const RunningApplication&)> used_;
    std::map<std::int64_t, RunningApplication> seen_;
    std::shared_ptr<const bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace velto
