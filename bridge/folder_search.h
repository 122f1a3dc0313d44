#pragma once

#include <cstdint>
#include <string>

#include "analysis/folders/FolderCache.h"

namespace velto {

/// What the page looks for among the names of all folders.
struct FolderSearch {
    std::int64_t request = 0;
    std::string text;
};

/// The answer as JSON (`onFolderSearch`): of the folders whose names hold every word of the text,
/// whatever the case and the marks of its letters, the 200 largest. `measured` may be null.
std::string foundFolders(const MeasuredFolders* measured, const FolderSearch& search);

}  // namespace velto
