#include "platform/processor_use.h"

namespace velto {

/// The system tells no delays.
ProcessorUse processorUse() { return {.used = processorTime()}; }

}  // namespace velto
