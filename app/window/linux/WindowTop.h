#pragma once

#include <functional>

#include "app/window/linux/gtk.h"

namespace velto::window {

/// The page up to the window's top edge, and over its first points what a title bar would hold: the
/// strip that drags the window, the menu on the left, the window's buttons where the desktop has
/// them. Held by the window that it is put into, whose child it becomes.
class WindowTop {
public:
    /// `changed` is called when the room that the controls take may have changed.
    WindowTop(GtkWindow* window, GtkWidget* page, GtkWidget* menuButton,
              std::function<void()> changed);
    ~WindowTop();
    WindowTop(const WindowTop&) = delete;
    WindowTop& operator=(const WindowTop&) = delete;

    /// How far the controls reach into the page from its right edge, in points; 0 without any.
    int roomAtEnd() const;

private:
    static gboolean position(GtkOverlay*, GtkWidget* widget, GdkRectangle* place, gpointer self);
    static void controlsChanged(GObject*, GParamSpec*, gpointer self);

    std::function<void()> changed_;
    GtkWidget* overlay_;
    GtkWidget* dragRegion_;
    GtkWidget* controlsAtStart_;
    GtkWidget* controlsAtEnd_;
};

}  // namespace velto::window
