#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "analysis/folders/FolderCache.h"
#include "bridge/Departures.h"
#include "platform/DirectoryReader.h"

namespace velto {

/// What another file system says of itself, in bytes.
struct VolumeUse {
    std::int64_t used = 0;
    std::int64_t total = 0;
};

/// By the name of the folder at which it begins; those that have not said it are missing.
using VolumeUses = std::map<std::string, VolumeUse, std::less<>>;

/// What the page has asked of a folder.
struct FolderRequest {
    std::int64_t request = 0;
    std::string path;         // absolute
    bool isWithheld = false;  // by the system, which would ask the user: not opened
};

/// The answer as JSON (`onFolder`): what the analysis has measured, beside what is in the folder
/// now, without what has left for the trash since. `measured` is null without an analysis. Reads
/// the folder; blocking.
std::string folderContents(DirectoryReader& reader, const MeasuredFolders* measured,
                           const FolderRequest& question, const VolumeUses& volumes,
                           const Departures& departures = {});

/// The other file systems that begin directly inside a folder, by name.
std::vector<std::string> volumesInside(const MeasuredFolders& measured, const std::string& path);

}  // namespace velto
