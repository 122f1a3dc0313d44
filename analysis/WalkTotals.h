#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "analysis/DiskState.h"
#include "cleaning/DupFinder.h"

namespace velto {

/// What a walk of the home has counted, before anything is made of it.
struct WalkTotals {
    std::int64_t filesScanned = 0;                       // regular files counted
    std::int64_t bytesScanned = 0;                       // allocated bytes counted
    std::vector<FileRecord> fileList;                    // duplicate candidates, in path order
    std::map<std::string, std::int64_t> catBytes;        // by category id
    std::map<std::string, std::vector<BigFile>> catTop;  // in path order
    std::map<std::string, std::int64_t> catFiles;
};

}  // namespace velto
