#pragma once

#include <chrono>

namespace velto {

/// How long `work` takes, by the steady clock, in milliseconds.
template <typename Work>
double milliseconds(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    return taken.count();
}

}  // namespace velto
