#pragma once

#include <string>
#include <vector>

#include "platform/ToolRunner.h"

namespace velto {

/// Runs tools with `posix_spawn`. The run ends with the tool itself: what a process that it left
/// behind writes later is not waited for. Tools get the environment as it was when the runner was
/// made: what the program sets for itself afterwards is no business of theirs.
class PosixToolRunner final : public ToolRunner {
public:
    PosixToolRunner();

    ToolResult run(const std::string& path, const std::vector<std::string>& arguments) override;

private:
    std::vector<std::string> environment_;  // "NAME=value" each
};

}  // namespace velto
