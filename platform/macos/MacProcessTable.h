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
};

}  // namespace velto
