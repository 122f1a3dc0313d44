#include <ctime>

#include "platform/processor_use.h"

namespace velto {

double processorTime() {
    return static_cast<double>(std::clock()) / static_cast<double>(CLOCKS_PER_SEC);
}

}  // namespace velto
