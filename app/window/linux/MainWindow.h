#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/VeltoApp.h"
#include "app/window/ReloadPace.h"
#include "app/window/linux/CommandMenu.h"
#include "app/window/linux/GtkWebView.h"
#include "app/window/linux/PageZoom.h"
#include "app/window/linux/WindowTop.h"
#include "app/window/linux/gtk.h"

namespace velto::window {

/// What a window is made of and works with. Everything outlives it.
struct WindowContext {
    VeltoApp& app;
    Platform& platform;
    GtkApplication* application;
    CommandMenu& menu;
};

/// The program's one window with the page in it. Main thread.
class MainWindow {
public:
    /// Makes the window around a view that has just begun to load the page, and hands the view to
    /// the application. `closed` is called when the user closes it; the window then stands until it
    /// is destroyed.
    MainWindow(const WindowContext& context, std::shared_ptr<GtkWebView> webView,
               Appearance appearance, std::function<void()> closed);

    /// Remembers the size, takes the web view from the application, and removes the window.
    ~MainWindow();
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    /// Shows it in front of the others, with the focus.
    void present();

    void showAppearance(Appearance appearance);

private:
    static gboolean closeRequested(GtkWindow*, gpointer self);
    static void activeChanged(GtkWindow* window, GParamSpec*, gpointer self);
    static void loadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer self);
    static gboolean settled(gpointer self);
    static gboolean loadFailed(WebKitWebView*, WebKitLoadEvent, const char* uri, GError* error,
                               gpointer self);
    static void pageProcessEnded(WebKitWebView*, WebKitWebProcessTerminationReason reason,
                                 gpointer self);

    void connectSignals();
    void loadAgain();
    std::string room() const;
    void tellRoom();

    WindowContext context_;
    std::function<void()> closed_;
    std::shared_ptr<GtkWebView> webView_;
    GtkWindow* window_;
    std::unique_ptr<WindowTop> top_;
    std::unique_ptr<PageZoom> zoom_;
    ReloadPace reloads_;
    bool loadFailed_ = false;
    guint settling_ = 0;  // the source that waits for a pause after the page has loaded
};

}  // namespace velto::window
