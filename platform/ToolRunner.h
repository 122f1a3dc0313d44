#pragma once

#include <string>
#include <vector>

namespace velto {

struct ToolResult {
    bool started = false;
    std::string startError;           // the system's reason when it could not be started
    int exitStatus = -1;              // 128 + the signal's number when a signal ended it
    std::string standardError;        // all of it, bytes as written; of `run`
    std::string standardOutput = {};  // the same; of `read`
};

/// Runs child processes. Blocking; safe from every thread; never throws.
class ToolRunner {
public:
    virtual ~ToolRunner() = default;

    /// Runs the program at an absolute path and waits for its end. Standard input and output are
    /// the null device; standard error is captured.
    virtual ToolResult run(const std::string& path, const std::vector<std::string>& arguments) = 0;

    /// The same for a tool that is asked something: its standard output is captured, and standard
    /// error is the null device.
    virtual ToolResult read(const std::string& path, const std::vector<std::string>& arguments) = 0;
};

}  // namespace velto
