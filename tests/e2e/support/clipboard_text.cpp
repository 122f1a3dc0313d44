// What another program would paste: writes the text that the clipboard of the display holds, and
// ends; status 1 when it holds none.
#include <gtk/gtk.h>

#include <cstdio>

namespace {

struct Reading {
    GMainLoop* loop;
    gchar* text = nullptr;
};

void finish(GObject* clipboard, GAsyncResult* result, gpointer data) {
    auto* const reading = static_cast<Reading*>(data);
    reading->text = gdk_clipboard_read_text_finish(GDK_CLIPBOARD(clipboard), result, nullptr);
    g_main_loop_quit(reading->loop);
}

}  // namespace

int main() {
    gtk_init();
    Reading reading{.loop = g_main_loop_new(nullptr, FALSE)};
    GdkClipboard* const clipboard = gdk_display_get_clipboard(gdk_display_get_default());
    gdk_clipboard_read_text_async(clipboard, nullptr, finish, &reading);
    g_main_loop_run(reading.loop);
    g_main_loop_unref(reading.loop);
    if (reading.text == nullptr) return 1;
    std::fputs(reading.text, stdout);
    g_free(reading.text);
    return 0;
}
