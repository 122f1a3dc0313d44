#pragma once

#include "platform/ProcessTable.h"

namespace velto {

/// Processes through libproc, applications as the workspace knows them.
class MacProcessTable final : public ProcessTable {
public:
    std::map<std::int32_t, ProcInfo> list() override;
    std::optional<ProcessUsage> usage(std::int32_t process) override;
    std::string executablePath(std::int32_t process) override;
    std::map<std::int32_t, RunningApp> runningApps() override;
    std::int32_t ownProcess() const override;
    std::optional<std::uint64_t> startOf(std::int32_t process) const override;
};

}  // namespace velto
