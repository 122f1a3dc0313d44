#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "analysis/AnalysisOutput.h"
#include "platform/CancellationFlag.h"
#include "cleaning/DupFinder.h"
#include "platform/Platform.h"

namespace velto {

/// Thrown by a walk whose flag was set.
class CancellationError : public std::exception {
public:
    const char* what() const noexcept override { return "cancelled"; }
};

class PermissionService;

/// Walks the home folder and adds up what fills it. One walk at a time per instance.
class ScannerService {
public:
    /// Files counted so far and gigabytes counted so far; called on the walking thread, at most
    /// once every 0.2 seconds.
    using Progress = std::function<void(std::int64_t files, double gb)>;

    /// The platform and the service outlive the scanner.
    ScannerService(Platform& platform, const PermissionService& permissions);

    /// Walks, finds duplicates and builds the output. `excluded` are the paths that the user keeps
    /// out. Blocks; not on the main thread. Throws CancellationError. A home that cannot be read is
    /// fatal.
    AnalysisOutput scan(const std::vector<std::string>& excluded, const CancellationFlag& cancelled,
                        const Progress& progress);

    // The raw totals of the last walk; partial after a cancelled one.
    std::int64_t filesScanned = 0;                          // regular files counted
    std::int64_t bytesScanned = 0;                          // allocated bytes counted
    std::vector<FileRecord> fileList;                       // duplicate candidates, in path order
    std::map<std::string, std::int64_t> catBytes;
    std::map<std::string, std::vector<BigFile>> catTop;     // in path order
    std::map<std::string, std::int64_t> catFiles;

private:
    Platform& platform_;
    const PermissionService& permissions_;
};

}  // namespace velto
