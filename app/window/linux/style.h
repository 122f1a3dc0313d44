#pragma once

#include "app/window/linux/gtk.h"
#include "platform/ApplicationShell.h"

namespace velto::window {

/// The look of the program's own windows: the page's background and no lines of its own, so that
/// window and page read as one surface.
class Style {
public:
    Style();
    ~Style();
    Style(const Style&) = delete;
    Style& operator=(const Style&) = delete;

    void show(Appearance appearance);

private:
    GlibReference<GtkCssProvider> provider_;
};

/// The colour behind the page, as GTK has it.
GdkRGBA backgroundOf(Appearance appearance);

}  // namespace velto::window
