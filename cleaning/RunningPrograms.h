#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/RunningApplications.h"

namespace velto {

/// What runs at the moment of making the object, by every name that tells. Safe from every thread
/// once it is made.
class RunningPrograms {
public:
    explicit RunningPrograms(RunningApplications& running);

    /// Something that runs is called so, whatever the case: a program without or with its version,
    /// a bundle, a part of a bundle's identifier, a Flatpak or a Snap.
    bool has(std::string_view name) const;

    /// A running bundle's identifier is this one, or one of the two is the beginning of the other
    /// up to a full stop. `lowerName` in lower case.
    bool isOfABundle(std::string_view lowerName) const;

    /// A program runs that lies below `folder`, an absolute path.
    bool runsInside(const std::string& folder) const;

private:
    void note(const RunningApplication& application);

    std::unordered_set<std::string> words_;  // lower case
    std::vector<std::string> identifiers_;   // of running bundles, lower case
    std::vector<std::string> executables_;   // absolute
};

}  // namespace velto
