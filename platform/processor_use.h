#pragma once

namespace velto {

/// Seconds, of all threads of this process that run.
struct ProcessorUse {
    double used = 0;     // of processors
    double delayed = 0;  // in line for one behind others; 0 where the system does not tell
};

/// Since the process began. What a thread was delayed is forgotten when it ends.
ProcessorUse processorUse();

/// Seconds of processors that this process has used, its ended threads too.
double processorTime();

}  // namespace velto
