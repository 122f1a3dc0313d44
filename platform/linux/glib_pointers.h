#pragma once

#include <glib-object.h>

#include <memory>

namespace velto {

struct GlibFree {
    void operator()(gpointer memory) const { g_free(memory); }
};
/// A text that GLib allocated.
using GlibText = std::unique_ptr<char, GlibFree>;

struct GlibUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
/// One reference to a GObject.
template <typename Object>
using GlibReference = std::unique_ptr<Object, GlibUnref>;

struct GlibFreeError {
    void operator()(GError* error) const { g_error_free(error); }
};
using GlibError = std::unique_ptr<GError, GlibFreeError>;

}  // namespace velto
