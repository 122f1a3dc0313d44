#pragma once

#include <string_view>

namespace velto {

/// The system log: one call is one line. Safe from every thread; never fails.
class Log {
public:
    virtual ~Log() = default;

    /// `text` is UTF-8 without a line break.
    virtual void line(std::string_view text) = 0;
};

/// Ends the program at once with `message` on standard error and exit status 1. For faults that
/// leave nothing to go on with: no resource bundle, no readable home.
[[noreturn]] void fatal(std::string_view message);

}  // namespace velto
