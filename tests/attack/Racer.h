#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace velto {

/// While it lives, a thread of its own swaps folders for links, back and forth, as fast as it can:
/// each place for what stands beside it under the place's path and " link".
class Racer {
public:
    explicit Racer(std::vector<std::string> places);
    /// Ends with every folder in its own place.
    ~Racer();
    Racer(const Racer&) = delete;
    Racer& operator=(const Racer&) = delete;

    /// False where the system cannot exchange two names in one step.
    static bool isPossible(const std::string& folder);

    long swaps() const { return swaps_; }

private:
    static bool exchange(const std::string& one, const std::string& other);

    std::vector<std::string> places_;
    std::atomic<bool> mayEnd_ = false;
    std::atomic<long> swaps_ = 0;
    std::thread thread_;
};

}  // namespace velto
