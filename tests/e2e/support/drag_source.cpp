// Something to drag for the tests of the window: `drag_source file PATH`, `drag_source link
// ADDRESS` or `drag_source text TEXT` shows a small window that the pointer can drag it from.
// Writes "ready", then "dragging" when a drag begins and "dropped" or "refused" at its end, until
// it is ended.
#include <gtk/gtk.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace {

void tell(const char* what) {
    std::puts(what);
    std::fflush(stdout);
}

GdkContentProvider* bytes(const char* type, const std::string& text) {
    GBytes* const copy = g_bytes_new(text.data(), text.size());
    GdkContentProvider* const provider = gdk_content_provider_new_for_bytes(type, copy);
    g_bytes_unref(copy);
    return provider;
}

/// As a file manager and a browser offer them.
GdkContentProvider* contentFor(std::string_view kind, const char* what) {
    if (kind == "text") return bytes("text/plain;charset=utf-8", what);
    std::string address = what;
    if (kind == "file") {
        gchar* const uri = g_filename_to_uri(what, nullptr, nullptr);
        address = uri;
        g_free(uri);
    }
    GdkContentProvider* offers[] = {
        bytes("text/uri-list", address + "\r\n"), bytes("_NETSCAPE_URL", address + "\n" + address),
        bytes("text/plain;charset=utf-8", address), bytes("UTF8_STRING", address)};
    return gdk_content_provider_new_union(offers, G_N_ELEMENTS(offers));
}

void activate(GtkApplication* application, gpointer content) {
    GtkWidget* const window = gtk_application_window_new(application);
    gtk_window_set_title(GTK_WINDOW(window), "Drag source");
    gtk_window_set_decorated(GTK_WINDOW(window), FALSE);
    gtk_window_set_default_size(GTK_WINDOW(window), 120, 120);
    GtkWidget* const label = gtk_label_new("drag me");
    gtk_widget_set_hexpand(label, TRUE);
    gtk_widget_set_vexpand(label, TRUE);
    GtkDragSource* const source = gtk_drag_source_new();
    gtk_drag_source_set_actions(
        source, static_cast<GdkDragAction>(GDK_ACTION_COPY | GDK_ACTION_MOVE | GDK_ACTION_LINK));
    gtk_drag_source_set_content(source, static_cast<GdkContentProvider*>(content));
    g_signal_connect(source, "drag-begin",
                     G_CALLBACK(+[](GtkDragSource*, GdkDrag*, gpointer) { tell("dragging"); }),
                     nullptr);
    const auto cancelled =
        +[](GtkDragSource*, GdkDrag*, GdkDragCancelReason, gpointer refused) -> gboolean {
        *static_cast<bool*>(refused) = true;
        return FALSE;
    };
    const auto ended = +[](GtkDragSource*, GdkDrag*, gboolean, gpointer refused) {
        tell(*static_cast<bool*>(refused) ? "refused" : "dropped");
        *static_cast<bool*>(refused) = false;
    };
    static bool refused = false;
    g_signal_connect(source, "drag-cancel", G_CALLBACK(cancelled), &refused);
    g_signal_connect(source, "drag-end", G_CALLBACK(ended), &refused);
    gtk_widget_add_controller(label, GTK_EVENT_CONTROLLER(source));
    gtk_window_set_child(GTK_WINDOW(window), label);
    g_signal_connect(window, "map", G_CALLBACK(+[](GtkWidget*, gpointer) { tell("ready"); }),
                     nullptr);
    gtk_window_present(GTK_WINDOW(window));
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fputs("usage: drag_source file PATH | link ADDRESS | text TEXT\n", stderr);
        return 2;
    }
    gtk_init();
    GtkApplication* const application = gtk_application_new(nullptr, G_APPLICATION_NON_UNIQUE);
    g_signal_connect(application, "activate", G_CALLBACK(activate),
                     contentFor(arguments[1], arguments[2]));
    const int status = g_application_run(G_APPLICATION(application), 1, arguments);
    g_object_unref(application);
    return status;
}
