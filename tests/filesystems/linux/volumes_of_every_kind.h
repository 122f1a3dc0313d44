#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "support/linux/passing_volume/faults.h"

namespace velto {

/// A file system, and what it can keep.
struct VolumeKind {
    const char* name;
    bool keepsLinks = true;  // symbolic and hard ones
    bool keepsModes = true;
    bool keepsAttributes = true;  // extended ones
    bool keepsHoles = true;
    bool keepsAnyName = true;  // and not only those that every system can write
    bool tellsCaseApart = true;
};

/// For the test's report.
void PrintTo(const VolumeKind& kind, std::ostream* stream);

const std::vector<VolumeKind>& volumeKinds();
const VolumeKind& volumeKind(const std::string& name);

/// Mounts an empty volume of a kind on a folder; what it needs besides lies in `scratch`, a folder.
/// Returns why that is not possible here, "" when it is done.
std::string mountVolume(const VolumeKind& kind, const std::string& folder,
                        const std::string& scratch);

/// A volume of the tests' own that passes everything on to a folder and does wrong what it is told
/// to. Goes with the object, not what it held: another one can show that again.
class PassingVolume {
public:
    /// `options` as tests/support/linux/passing_volume names them.
    PassingVolume(std::string backing, std::string mountPoint,
                  std::vector<std::string> options = {});
    ~PassingVolume();
    PassingVolume(const PassingVolume&) = delete;
    PassingVolume& operator=(const PassingVolume&) = delete;

    /// Why it is not there; "" when it is.
    const std::string& problem() const { return problem_; }
    VolumeFaults& faults() { return *faults_; }

private:
    std::string mountPoint_;
    std::string problem_;
    VolumeFaults* faults_ = nullptr;
    int process_ = -1;
};

/// Runs `action` in a process with mounts of its own, which end with it. `action` returns why the
/// test is to be skipped, "" when it has run; so does this function. What was expected in vain is a
/// failure here too.
std::string withMountsOfItsOwn(const std::function<std::string()>& action);

}  // namespace velto
