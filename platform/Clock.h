#pragma once

namespace velto {

/// Time, injectable so that tests decide what "now" is. Safe from every thread.
class Clock {
public:
    virtual ~Clock() = default;

    /// Seconds since 1970-01-01 UTC.
    virtual double now() const = 0;

    /// Seconds on a clock that never jumps; only differences mean something.
    virtual double monotonic() const = 0;
};

/// The machine's clocks.
class SystemClock final : public Clock {
public:
    double now() const override;
    double monotonic() const override;
};

}  // namespace velto
