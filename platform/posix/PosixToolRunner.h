#pragma once

#include "platform/ToolRunner.h"

namespace velto {

/// Runs tools with `posix_spawn`. The run ends with the tool itself: what a process that it left
/// behind writes later is not waited for.
class PosixToolRunner final : public ToolRunner {
public:
    ToolResult run(const std::string& path, const std::vector<std::string>& arguments) override;
};

}  // namespace velto
