#pragma once

#include <cerrno>

namespace velto {

/// Repeats a system call that a signal has interrupted; negative results are failures.
template <typename Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

}  // namespace velto
