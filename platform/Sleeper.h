#pragma once

#include <cstdint>

namespace velto {

/// Waiting, injectable so that tests need not wait. Safe from every thread.
class Sleeper {
public:
    virtual ~Sleeper() = default;

    /// Blocks the calling thread for that many microseconds at least.
    virtual void sleep(std::int64_t microseconds) = 0;
};

class SystemSleeper final : public Sleeper {
public:
    void sleep(std::int64_t microseconds) override;
};

}  // namespace velto
