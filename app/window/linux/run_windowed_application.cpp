#include <glib-unix.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "app/VeltoApp.h"
#include "app/window/PageFiles.h"
#include "app/window/linux/CommandMenu.h"
#include "app/window/linux/DesktopAppearance.h"
#include "app/window/linux/GtkApplicationShell.h"
#include "app/window/linux/MainWindow.h"
#include "app/window/linux/drawing_memory.h"
#include "app/window/linux/gtk.h"
#include "app/window/linux/page_scheme.h"
#include "app/window/linux/style.h"
#include "app/window/linux/web_engine.h"
#include "app/window/linux/web_policies.h"
#include "app/window/window_rules.h"
#include "platform/linux/LauncherEntry.h"

namespace velto {
namespace window {
namespace {

/// The application on GTK: one instance per session bus, and a window while the user wants one.
class WindowedApplication {
public:
    WindowedApplication(VeltoApp& app, Platform& platform,
                        GlibReference<WebKitNetworkSession> session)
        : app_(app),
          platform_(platform),
          session_(std::move(session)),
          application_(gtk_application_new(programIdentifier, G_APPLICATION_DEFAULT_FLAGS)) {
        connect("startup", G_CALLBACK(+[](GApplication*, gpointer self) { of(self).startUp(); }));
        connect("activate", G_CALLBACK(+[](GApplication*, gpointer self) { of(self).activate(); }));
        connect("shutdown", G_CALLBACK(+[](GApplication*, gpointer self) { of(self).shutDown(); }));
    }

    int run(const AppCommand* asked) {
        if (asked != nullptr) ask(*asked);
        return g_application_run(G_APPLICATION(application_.get()), 0, nullptr);
    }

private:
    /// What stands while the application runs, in the order in which it is made.
    struct Running {
        Running(VeltoApp& app, Platform& platform, GtkApplication* application,
                std::shared_ptr<GtkWebView> page)
            : firstPage(std::move(page)),
              appearance(platform, webDataFolder(platform) + "/appearance"),
              shell(application, appearance),
              launcher(g_application_get_dbus_connection(G_APPLICATION(application))),
              menu(app, application) {}

        std::shared_ptr<GtkWebView> firstPage;  // until the window takes it
        Style style;
        DesktopAppearance appearance;
        GtkApplicationShell shell;
        LauncherEntry launcher;
        CommandMenu menu;
        std::unique_ptr<MainWindow> window;
        std::unique_ptr<MainWindow> closing;
    };

    /// The application that runs already is asked by its action; this process then only has it show
    /// its window.
    void ask(const AppCommand& command) {
        GApplication* const application = G_APPLICATION(application_.get());
        if (g_application_register(application, nullptr, nullptr) != FALSE &&
            g_application_get_is_remote(application) != FALSE) {
            g_action_group_activate_action(G_ACTION_GROUP(application), command.action.data(),
                                           nullptr);
            return;
        }
        app_.performWhenShown(command);
    }

    static WindowedApplication& of(gpointer self) {
        return *static_cast<WindowedApplication*>(self);
    }

    void connect(const char* signal, GCallback callback) {
        g_signal_connect(application_.get(), signal, callback, this);
    }

    void startUp() {
        GApplication* const application = G_APPLICATION(application_.get());
        // The program ends by its own rule, not with its last window.
        g_application_hold(application);
        for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
            g_unix_signal_add(
                signal,
                +[](gpointer self) -> gboolean {
                    of(self).quitInOrder();
                    return G_SOURCE_CONTINUE;
                },
                this);
        }
        running_ = std::make_unique<Running>(app_, platform_, application_.get(), newPage());
        running_->appearance.onChange([this] { showAppearance(); });
        running_->appearance.start(g_application_get_dbus_connection(application));
        showAppearance();
        app_.setShell(running_->shell);
        app_.setTaskBar(&running_->launcher);
        app_.delegate().applicationDidFinishLaunching();
    }

    std::shared_ptr<GtkWebView> newPage() const { return openPage(session_.get(), platform_); }

    void activate() {
        if (!running_->window) {
            auto page = std::exchange(running_->firstPage, nullptr);
            if (!page) page = newPage();
            running_->window = std::make_unique<MainWindow>(
                WindowContext{.app = app_,
                              .platform = platform_,
                              .application = application_.get(),
                              .menu = running_->menu},
                std::move(page), running_->appearance.current(), [this] { windowAskedToClose(); });
        }
        running_->window->present();
    }

    /// The window with which the program ends stays until what runs is done.
    void windowAskedToClose() {
        if (!app_.delegate().applicationShouldTerminateAfterLastWindowClosed()) {
            return closeWindow();
        }
        quitInOrder();
    }

    void quitInOrder() {
        if (app_.quit().request([this] { quit(); })) quit();
    }

    void quit() {
        if (running_ && running_->window) closeWindow();
        g_application_quit(G_APPLICATION(application_.get()));
    }

    /// Called by the window itself, which therefore has to stand a moment longer.
    void closeWindow() {
        running_->closing = std::move(running_->window);
        platform_.dispatcher->main([this] {
            if (running_) running_->closing.reset();
        });
    }

    void shutDown() {
        app_.delegate().applicationWillTerminate();
        app_.setTaskBar(nullptr);
        running_.reset();
    }

    void showAppearance() {
        const Appearance appearance = running_->appearance.current();
        running_->style.show(appearance);
        if (running_->window) running_->window->showAppearance(appearance);
    }

    VeltoApp& app_;
    Platform& platform_;
    GlibReference<WebKitNetworkSession> session_;
    GlibReference<GtkApplication> application_;
    std::unique_ptr<Running> running_;
};

}  // namespace
}  // namespace window

int runWindowedApplication(VeltoApp& app, Platform& platform, const AppCommand* asked) {
    const auto bundle = window::bundleFolder(platform);
    if (!bundle) fatal(window::missingBundleMessage);
    window::keepDrawingMemory();
    window::prepareEnvironment(platform);
    auto session = window::makeSession(platform);
    // What the display knows the program by: its windows belong to the desktop entry of that name.
    g_set_prgname(programIdentifier);
    g_set_application_name("Velto");
    if (gtk_init_check() == FALSE) {
        std::fputs("velto: no display: neither a Wayland nor an X11 display answers\n", stderr);
        return EXIT_FAILURE;
    }
    gtk_window_set_default_icon_name(programIdentifier);
    window::nameLanguage(platform);
    const window::PageFiles page(*platform.files, *bundle);
    window::servePage(page);
    return window::WindowedApplication(app, platform, std::move(session)).run(asked);
}

}  // namespace velto
