#pragma once

#include <string>

#include "platform/Platform.h"

namespace velto {

/// The one copy that is being given other blocks by way of a second file, written down before that
/// is made ("Sharing.journal" of the data folder), so that a start after a cut-off one knows where
/// to look. Only where sharing works that way.
class SharingJournal {
public:
    /// The platform outlives the object.
    explicit SharingJournal(const Platform& platform);

    /// Throws FileError; then nothing may be begun.
    void begin(const std::string& path, const std::string& scratch) const;

    /// It is over. Throws FileError.
    void end() const;

    /// Removes what a cut-off one has left, or puts it beside the file under a name that can be
    /// seen when it has something else in it. True when nothing waits any more. Never throws.
    bool settle() const;

private:
    bool settleOne(const std::string& path, const std::string& scratch) const;

    const Platform& platform_;
    std::string path_;
};

}  // namespace velto
