#pragma once

#include <glib.h>

#include <functional>

namespace velto {

/// Runs the default main context until `done`.
inline void iterateUntil(const std::function<bool()>& done) {
    while (!done())
        g_main_context_iteration(nullptr, TRUE);
}

}  // namespace velto
