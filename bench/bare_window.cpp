// The floor for the program's start: a GTK window with a web view and an empty page, nothing else.
// Writes "painted" to standard error when the page's second frame begins (the first one is then on
// screen) and ends. The empty page is loaded from a file, the engine's own shortest way.

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

constexpr const char* page =
    "<!doctype html><meta charset=utf-8><title>empty</title><script>"
    "requestAnimationFrame(() => requestAnimationFrame(() =>"
    " webkit.messageHandlers.bench.postMessage('painted')));"
    "</script>";

void onPainted(WebKitUserContentManager*, JSCValue*, gpointer application) {
    std::fputs("painted\n", stderr);
    g_application_quit(G_APPLICATION(application));
}

void onActivate(GtkApplication* application, gpointer file) {
    GtkWidget* window = gtk_application_window_new(application);
    gtk_window_set_default_size(GTK_WINDOW(window), 1180, 760);
    GtkWidget* view = webkit_web_view_new();
    WebKitUserContentManager* content =
        webkit_web_view_get_user_content_manager(WEBKIT_WEB_VIEW(view));
    g_signal_connect(content, "script-message-received::bench", G_CALLBACK(onPainted), application);
    webkit_user_content_manager_register_script_message_handler(content, "bench", nullptr);
    gtk_window_set_child(GTK_WINDOW(window), view);
    webkit_web_view_load_uri(WEBKIT_WEB_VIEW(view), static_cast<const char*>(file));
    gtk_window_present(GTK_WINDOW(window));
}

}  // namespace

// The one argument is a folder for the empty page.
int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: bench_bare_window FOLDER\n", stderr);
        return 2;
    }
    // The program sets the same: some graphics stacks show nothing otherwise.
    setenv("WEBKIT_DISABLE_DMABUF_RENDERER", "1", 0);
    const std::filesystem::path file = std::filesystem::absolute(argv[1]) / "empty.html";
    std::ofstream(file) << page;
    gchar* uri = g_filename_to_uri(file.c_str(), nullptr, nullptr);
    GtkApplication* application = gtk_application_new("app.velto.bench", G_APPLICATION_NON_UNIQUE);
    g_signal_connect(application, "activate", G_CALLBACK(onActivate), uri);
    const int status = g_application_run(G_APPLICATION(application), 0, nullptr);
    g_object_unref(application);
    g_free(uri);
    return status;
}
