#include "platform/linux/LinuxWorkspace.h"

#include <gio/gio.h>

#include "platform/linux/glib_pointers.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr int busTimeout = 10'000;  // milliseconds; the file manager may have to start first

using Environment = std::map<std::string, std::string>;

Environment currentEnvironment() {
    Environment variables;
    char** const names = g_listenv();
    for (char** name = names; *name != nullptr; ++name) {
        if (const char* const value = g_getenv(*name)) variables.emplace(*name, value);
    }
    g_strfreev(names);
    return variables;
}

/// What waits for the bus's answer.
struct Reveal {
    Log& log;
    Environment environment;
    std::string path;
    std::string uri;
};

void logFailure(Log& log, const std::string& what, const GError* error) {
    log.line("Velto ▶ no se pudo abrir " + singleLine(what) + ": " +
             singleLine(error == nullptr ? "error desconocido" : error->message));
}

struct Opening {
    Log& log;
    std::string url;
};

void opened(GObject*, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<Opening> opening(static_cast<Opening*>(data));
    GError* error = nullptr;
    if (g_app_info_launch_default_for_uri_finish(result, &error) == FALSE) {
        logFailure(opening->log, opening->url, GlibError(error).get());
    }
}

/// Takes back, for what is opened, what the program has set since `atStart`.
GlibReference<GAppLaunchContext> launchContext(const Environment& atStart) {
    GlibReference<GAppLaunchContext> context(g_app_launch_context_new());
    for (const auto& [name, value] : currentEnvironment()) {
        const auto before = atStart.find(name);
        if (before == atStart.end()) {
            g_app_launch_context_unsetenv(context.get(), name.c_str());
        } else if (before->second != value) {
            g_app_launch_context_setenv(context.get(), name.c_str(), before->second.c_str());
        }
    }
    return context;
}

void open(Log& log, const std::string& url, const Environment& environment) {
    auto opening = std::make_unique<Opening>(Opening{log, url});
    g_app_info_launch_default_for_uri_async(url.c_str(), launchContext(environment).get(), nullptr,
                                            opened, opening.release());
}

std::string fileUri(const std::string& path) {
    GError* error = nullptr;
    const GlibText uri(g_filename_to_uri(path.c_str(), nullptr, &error));
    const GlibError reason(error);
    return uri ? std::string(uri.get()) : std::string();
}

void shown(GObject* source, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<Reveal> reveal(static_cast<Reveal*>(data));
    GError* error = nullptr;
    GVariant* const answer =
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error);
    if (answer != nullptr) {
        g_variant_unref(answer);
        return;
    }
    const GlibError reason(error);  // no such file manager here: the folder has to do
    open(reveal->log, fileUri(parentFolder(reveal->path)), reveal->environment);
}

void connected(GObject*, GAsyncResult* result, gpointer data) {
    std::unique_ptr<Reveal> reveal(static_cast<Reveal*>(data));
    GError* error = nullptr;
    const GlibReference<GDBusConnection> bus(g_bus_get_finish(result, &error));
    if (!bus) {
        logFailure(reveal->log, reveal->path, GlibError(error).get());
        return;
    }
    GVariantBuilder uris;
    g_variant_builder_init(&uris, G_VARIANT_TYPE("as"));
    g_variant_builder_add(&uris, "s", reveal->uri.c_str());
    g_dbus_connection_call(bus.get(), "org.freedesktop.FileManager1",
                           "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1",
                           "ShowItems", g_variant_new("(ass)", &uris, ""), nullptr,
                           G_DBUS_CALL_FLAGS_NONE, busTimeout, nullptr, shown, reveal.release());
}

}  // namespace

LinuxWorkspace::LinuxWorkspace(Log& log) : log_(log), environment_(currentEnvironment()) {}

void LinuxWorkspace::openURL(const std::string& url) { open(log_, url, environment_); }

void LinuxWorkspace::reveal(const std::string& path) {
    std::string uri = fileUri(path);
    if (uri.empty()) {
        log_.line("Velto ▶ no se pudo mostrar " + singleLine(path) + ": no es una ruta absoluta");
        return;
    }
    auto reveal = std::make_unique<Reveal>(Reveal{log_, environment_, path, std::move(uri)});
    g_bus_get(G_BUS_TYPE_SESSION, nullptr, connected, reveal.release());
}

}  // namespace velto
