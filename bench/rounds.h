#pragma once

#include <concepts>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "platform/Log.h"

namespace velto {

class SilentLog final : public Log {
public:
    void line(std::string_view) override {}
};

/// Prints the times that each round gives, in milliseconds, a round a line. `rounds` is how many,
/// as a program's argument has it. Returns the program's status.
int printRounds(const char* rounds, const std::invocable auto& round) try {
    for (int left = std::atoi(rounds); left > 0; --left) {
        fmt::print("{:.2f}\n", fmt::join(round(), " "));
        std::fflush(stdout);
    }
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "{}\n", error.what());
    return 1;
}

}  // namespace velto
