#pragma once

#include <atomic>

namespace velto {

/// What a passing volume is to do wrong, in memory that it shares with the test. Only calls that
/// change something count.
struct VolumeFaults {
    enum Action : int {
        none,
        loseReply,   // the call is carried out and answered with an error
        refuse,      // the call is not carried out
        disconnect,  // neither that call nor any later one, looking included
        vanish,      // the call is carried out, and the volume is gone before it has answered
    };
    std::atomic<int> count;  // calls so far
    std::atomic<int> at;     // index of the call
    std::atomic<int> action;
    std::atomic<int> error;  // errno of the answer
};

}  // namespace velto
