#pragma once

#include <string>
#include <vector>

#include "analysis/DiskState.h"

namespace velto {

/// What a walk and its post-processing produce: the fields of DiskState that come from the disk.
struct AnalysisOutput {
    double total = 0;  // GB
    double free = 0;   // GB
    std::vector<Cat> cats;
    std::vector<BigFile> files;
    std::vector<DupGroup> dupGroups;
    std::vector<std::string> protectedLocations;
};

}  // namespace velto
