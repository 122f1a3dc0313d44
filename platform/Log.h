#pragma once

#include <string>
#include <string_view>

namespace velto {

/// The system log: one call is one line. Safe from every thread; never fails.
class Log {
public:
    virtual ~Log() = default;

    /// Writes `text` as one line, as `shown` has it.
    virtual void line(std::string_view text) = 0;

    /// For whoever looks for a fault: lines have any length, and nothing is left out of what they
    /// tell. Asked for once, at the start, before other threads write.
    void setDetailed() { isDetailed_ = true; }
    bool isDetailed() const { return isDetailed_; }

protected:
    /// `text` as `logText` (platform/values/text.h) writes it, and no longer than a line should be.
    std::string shown(std::string_view text) const;

private:
    bool isDetailed_ = false;
};

/// Ends the program at once with `message` on standard error and exit status 1. For faults that
/// leave nothing to go on with: no resource bundle, no readable home.
[[noreturn]] void fatal(std::string_view message);

}  // namespace velto
