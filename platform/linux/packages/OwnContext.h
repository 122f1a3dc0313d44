#pragma once

#include <glib.h>

namespace velto {

/// A main context that is the thread's default as long as the object lives: what is asked of GLib
/// meanwhile answers there, and not in the window's loop.
class OwnContext {
public:
    OwnContext() : context_(g_main_context_new()) { g_main_context_push_thread_default(context_); }
    ~OwnContext() {
        g_main_context_pop_thread_default(context_);
        g_main_context_unref(context_);
    }
    OwnContext(const OwnContext&) = delete;
    OwnContext& operator=(const OwnContext&) = delete;

    GMainContext* get() const { return context_; }

private:
    GMainContext* context_;
};

}  // namespace velto
