#pragma once

#include <memory>
#include <string>
#include <vector>

#include "analysis/DiskState.h"
#include "analysis/Measurement.h"
#include "analysis/list_details.h"
#include "cleaning/DigestStore.h"
#include "cleaning/DupFinder.h"

namespace velto {

/// What a walk and its post-processing produce: the fields of DiskState that come from the disk,
/// and what they do not say.
struct AnalysisOutput {
    double total = 0;  // GB
    double free = 0;   // GB
    std::vector<Cat> cats;
    std::vector<BigFile> files;
    std::vector<DupGroup> dupGroups;
    std::vector<std::string> protectedLocations;

    // Besides, for what the page says of them.
    ListDetails details;
    Measurement measurement;
    std::vector<FileRecord> uncompared;    // what the search for duplicates did not get through
    std::shared_ptr<DigestStore> digests;  // what it knows of files; null: nothing is remembered
};

}  // namespace velto
