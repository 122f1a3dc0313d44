#include "app/window/linux/WindowTop.h"

#include <cmath>
#include <string>
#include <utility>

#include "app/window/window_rules.h"

namespace velto::window {
namespace {

/// Without a title bar of its own the desktop, or GTK, would draw one over the page.
void takeTitleBarAway(GtkWindow* window) {
    GtkWidget* const nothing = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_widget_set_visible(nothing, FALSE);
    gtk_window_set_titlebar(window, nothing);
}

GtkWidget* makeDragRegion() {
    GtkWidget* const handle = gtk_window_handle_new();
    gtk_widget_set_name(handle, std::string(dragRegionIdentifier).c_str());
    gtk_window_handle_set_child(GTK_WINDOW_HANDLE(handle),
                                gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0));
    return handle;
}

/// A corner of the window's top. It is a drag handle itself wherever it holds no button.
GtkWidget* makeCorner(GtkAlign side) {
    GtkWidget* const handle = gtk_window_handle_new();
    gtk_widget_add_css_class(handle, "velto-corner");
    gtk_widget_set_halign(handle, side);
    gtk_widget_set_valign(handle, GTK_ALIGN_START);
    gtk_widget_set_size_request(handle, -1, static_cast<int>(dragRegionHeight));
    return handle;
}

}  // namespace

WindowTop::WindowTop(GtkWindow* window, GtkWidget* page, GtkWidget* menuButton,
                     std::function<void()> changed)
    : changed_(std::move(changed)),
      overlay_(gtk_overlay_new()),
      dragRegion_(makeDragRegion()),
      controlsAtStart_(gtk_window_controls_new(GTK_PACK_START)),
      controlsAtEnd_(gtk_window_controls_new(GTK_PACK_END)) {
    takeTitleBarAway(window);
    g_object_ref_sink(overlay_);
    gtk_widget_set_overflow(overlay_, GTK_OVERFLOW_HIDDEN);  // round corners are the window's
    gtk_overlay_set_child(GTK_OVERLAY(overlay_), page);
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay_), dragRegion_);

    GtkWidget* const startBox = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_box_append(GTK_BOX(startBox), controlsAtStart_);
    gtk_widget_set_valign(menuButton, GTK_ALIGN_CENTER);
    gtk_box_append(GTK_BOX(startBox), menuButton);
    GtkWidget* const start = makeCorner(GTK_ALIGN_START);
    gtk_window_handle_set_child(GTK_WINDOW_HANDLE(start), startBox);
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay_), start);

    GtkWidget* const end = makeCorner(GTK_ALIGN_END);
    gtk_window_handle_set_child(GTK_WINDOW_HANDLE(end), controlsAtEnd_);
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay_), end);

    g_signal_connect(overlay_, "get-child-position", G_CALLBACK(&WindowTop::position), this);
    g_signal_connect(controlsAtEnd_, "notify::empty", G_CALLBACK(&WindowTop::controlsChanged),
                     this);
    g_signal_connect(gtk_settings_get_default(), "notify::gtk-decoration-layout",
                     G_CALLBACK(&WindowTop::controlsChanged), this);
    gtk_window_set_child(window, overlay_);
}

WindowTop::~WindowTop() {
    g_signal_handlers_disconnect_by_data(gtk_settings_get_default(), this);
    g_signal_handlers_disconnect_by_data(controlsAtEnd_, this);
    g_signal_handlers_disconnect_by_data(overlay_, this);
    g_object_unref(overlay_);
}

int WindowTop::roomAtEnd() const {
    if (gtk_window_controls_get_empty(GTK_WINDOW_CONTROLS(controlsAtEnd_)) != FALSE) return 0;
    int natural = 0;
    gtk_widget_measure(gtk_widget_get_parent(controlsAtEnd_), GTK_ORIENTATION_HORIZONTAL, -1,
                       nullptr, &natural, nullptr, nullptr);
    return natural;
}

gboolean WindowTop::position(GtkOverlay* overlay, GtkWidget* widget, GdkRectangle* place,
                             gpointer self) {
    if (widget != static_cast<WindowTop*>(self)->dragRegion_) return FALSE;  // by its alignment
    const double width = dragRegionWidth(gtk_widget_get_width(GTK_WIDGET(overlay)));
    *place = {static_cast<int>(dragRegionLeading), 0, static_cast<int>(std::lround(width)),
              static_cast<int>(dragRegionHeight)};
    return TRUE;
}

void WindowTop::controlsChanged(GObject*, GParamSpec*, gpointer self) {
    static_cast<WindowTop*>(self)->changed_();
}

}  // namespace velto::window
