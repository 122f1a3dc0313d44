#include "platform/processor_use.h"

#include <string>

#include "platform/linux/kernel_file.h"

namespace velto {

/// A thread's `schedstat` holds nanoseconds on a processor, nanoseconds in line for one, and how
/// often it was given one (Documentation/scheduler/sched-stats.rst).
ProcessorUse processorUse() {
    ProcessorUse use{.used = processorTime()};
    const std::string tasks = "/proc/self/task";
    for (const std::string& task : kernelNames(tasks)) {
        const auto text = kernelText(tasks + "/" + task + "/schedstat");
        if (!text) continue;
        std::string_view rest = *text;
        nextWord(rest);
        use.delayed += static_cast<double>(unsignedNumber(nextWord(rest))) * 1e-9;
    }
    return use;
}

}  // namespace velto
