#include "app/window/linux/MainWindow.h"

#include <utility>

#include "app/window/linux/style.h"
#include "app/window/linux/window_frame.h"
#include "app/window/navigation.h"
#include "app/window/zoom.h"
#include "platform/values/text.h"

namespace velto::window {
namespace {

MainWindow& owner(gpointer self) { return *static_cast<MainWindow*>(self); }

}  // namespace

MainWindow::MainWindow(const WindowContext& context, std::shared_ptr<GtkWebView> webView,
                       Appearance appearance, std::function<void()> closed)
    : context_(context),
      closed_(std::move(closed)),
      webView_(std::move(webView)),
      window_(GTK_WINDOW(gtk_application_window_new(context.application))) {
    gtk_window_set_title(window_, "Velto");
    gtk_widget_add_css_class(GTK_WIDGET(window_), "velto");
    restoreFrame(window_, *context_.platform.defaults);

    top_ = std::make_unique<WindowTop>(window_, webView_->widget(), context_.menu.makeButton(),
                                       [this] { tellRoom(); });
    zoom_ = std::make_unique<PageZoom>(context.application, window_, webView_->view(),
                                       *context_.platform.defaults, [this] { tellRoom(); });
    webView_->addUserScript(room());
    gtk_widget_grab_focus(webView_->widget());

    showAppearance(appearance);
    connectSignals();
    context_.app.windowOpened(webView_);
}

MainWindow::~MainWindow() {
    if (settling_ != 0) g_source_remove(settling_);
    rememberFrame(window_, *context_.platform.defaults);
    g_signal_handlers_disconnect_by_data(webView_->view(), this);
    g_signal_handlers_disconnect_by_data(window_, this);
    context_.app.delegate().applicationDidResignActive();  // nobody would tell later
    context_.app.windowClosed();
    webView_.reset();
    top_.reset();
    gtk_window_destroy(window_);
}

// The page keeps its own controls clear of the window's.
std::string MainWindow::room() const { return roomScript(top_->roomAtEnd(), zoom_->current()); }

void MainWindow::tellRoom() {
    if (zoom_) webView_->evaluate(room());  // its controls appear while it is being made
}

void MainWindow::present() { gtk_window_present(window_); }

void MainWindow::showAppearance(Appearance appearance) {
    const GdkRGBA colour = backgroundOf(appearance);
    webkit_web_view_set_background_color(webView_->view(), &colour);
}

void MainWindow::connectSignals() {
    g_signal_connect(window_, "close-request", G_CALLBACK(&MainWindow::closeRequested), this);
    g_signal_connect(window_, "notify::is-active", G_CALLBACK(&MainWindow::activeChanged), this);
    WebKitWebView* const view = webView_->view();
    g_signal_connect(view, "load-changed", G_CALLBACK(&MainWindow::loadChanged), this);
    g_signal_connect(view, "load-failed", G_CALLBACK(&MainWindow::loadFailed), this);
    g_signal_connect(view, "web-process-terminated", G_CALLBACK(&MainWindow::pageProcessEnded),
                     this);
}

void MainWindow::loadAgain() {
    loadFailed_ = false;
    webView_->loadPage();
}

gboolean MainWindow::closeRequested(GtkWindow*, gpointer self) {
    owner(self).closed_();
    return TRUE;  // the owner destroys the window
}

void MainWindow::activeChanged(GtkWindow* window, GParamSpec*, gpointer self) {
    AppDelegate& delegate = owner(self).context_.app.delegate();
    if (gtk_window_is_active(window) != FALSE) {
        delegate.applicationDidBecomeActive();
    } else {
        delegate.applicationDidResignActive();
    }
}

void MainWindow::loadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer self) {
    MainWindow& window = owner(self);
    if (event == WEBKIT_LOAD_STARTED) window.loadFailed_ = false;
    if (event == WEBKIT_LOAD_COMMITTED) window.tellRoom();
    if (event != WEBKIT_LOAD_FINISHED || window.loadFailed_ || window.settling_ != 0) return;
    // The page comes with what it shows first: drawing that goes before telling it more.
    window.settling_ = g_idle_add(&MainWindow::settled, self);
}

gboolean MainWindow::settled(gpointer self) {
    owner(self).settling_ = 0;
    owner(self).context_.app.pageLoaded();
    return G_SOURCE_REMOVE;
}

gboolean MainWindow::loadFailed(WebKitWebView*, WebKitLoadEvent, const char* uri, GError* error,
                                gpointer self) {
    // What was refused, or handed to the browser, ends here; the page still stands, and nothing of
    // the engine's takes its place.
    if (!isPageAddress(uri) ||
        g_error_matches(error, WEBKIT_POLICY_ERROR,
                        WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE) != FALSE) {
        return TRUE;
    }
    MainWindow& window = owner(self);
    window.loadFailed_ = true;
    window.context_.platform.log->line("Velto ▶ no se pudo cargar la página: " +
                                       singleLine(error->message));
    return FALSE;  // the engine shows what it knows about it
}

void MainWindow::pageProcessEnded(WebKitWebView*, WebKitWebProcessTerminationReason reason,
                                  gpointer self) {
    if (reason == WEBKIT_WEB_PROCESS_TERMINATED_BY_API) return;
    MainWindow& window = owner(self);
    Platform& platform = window.context_.platform;
    platform.log->line("Velto ▶ el proceso de la página terminó: se carga de nuevo");
    const double delay = window.reloads_.delay(platform.clock->monotonic());
    platform.dispatcher->mainAfter(delay,
                                   [&window, view = std::weak_ptr<GtkWebView>(window.webView_)] {
                                       if (!view.expired())
                                           window.loadAgain();  // the view goes with its window
                                   });
}

}  // namespace velto::window
