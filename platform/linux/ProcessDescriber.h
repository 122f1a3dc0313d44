#pragma once

#include <map>
#include <string>

#include "platform/RunningApplications.h"

namespace velto {

/// Says of processes what they run, as procfs has it. Knows the Flatpaks that ran when it was made:
/// one object for each look at the machine. Never throws.
class ProcessDescriber {
public:
    /// `proc` is where procfs is mounted, `runtime` is $XDG_RUNTIME_DIR (may be empty).
    ProcessDescriber(std::string proc, const std::string& runtime);

    /// `executable` as `executableOfProcess` gives it; not empty. Reads what the process itself
    /// keeps, which may wait for as long as the process does (one that hangs on a dead disk).
    RunningApplication describe(std::int64_t process, std::string executable) const;

    /// All but the script: nothing that the process could hold up.
    RunningApplication describeAtOnce(std::int64_t process, std::string executable) const;

    /// The program and the bundle alone, which is less to read.
    RunningApplication describeProgram(std::int64_t process, std::string executable) const;

private:
    std::string folderOf(std::int64_t process) const;

    std::string proc_;
    std::string ownControlGroup_;
    std::map<std::string, std::string> flatpaks_;  // by the namespace of their processes
};

}  // namespace velto
