#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/ToolRunner.h"

namespace velto {

/// Runs tools with `posix_spawn`. The run ends with the tool itself: what a process that it left
/// behind writes later is not waited for. Tools get the environment as it was when the runner was
/// made: what the program sets for itself afterwards is no business of theirs.
/// A tool that does not end within `limit` is killed, as its status then tells; of what it writes,
/// the first four MiB are kept.
class PosixToolRunner final : public ToolRunner {
public:
    static constexpr std::chrono::seconds usualLimit{60};

    explicit PosixToolRunner(std::chrono::milliseconds limit = usualLimit);

    ToolResult run(const std::string& path, const std::vector<std::string>& arguments) override;
    ToolResult read(const std::string& path, const std::vector<std::string>& arguments) override;

private:
    ToolResult runCapturing(int stream, const std::string& path,
                            const std::vector<std::string>& arguments);

    std::vector<std::string> environment_;  // "NAME=value" each
    std::chrono::milliseconds limit_;
};

}  // namespace velto
