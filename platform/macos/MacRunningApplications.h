#pragma once

#include "platform/RunningApplications.h"

namespace velto {

/// The applications that the workspace knows.
class MacRunningApplications final : public RunningApplications {
public:
    MacRunningApplications();
    ~MacRunningApplications() override;
    MacRunningApplications(const MacRunningApplications&) = delete;
    MacRunningApplications& operator=(const MacRunningApplications&) = delete;

    std::vector<RunningApplication> list() override;
    std::unique_ptr<ProcessControl> control(const RunningApplication& application) override;
    void observe(std::function<void(const RunningApplication&)> used) override;

private:
    struct Observers;
    std::unique_ptr<Observers> observers_;
};

}  // namespace velto
