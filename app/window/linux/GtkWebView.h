#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "app/window/ScriptQueue.h"
#include "app/window/linux/gtk.h"
#include "platform/WebView.h"

namespace velto::window {

/// The page's view on WebKitGTK. Scripts are evaluated and messages heard only while the document
/// that it shows is the page's own. The widget may outlive this object, which then hears nothing
/// more.
class GtkWebView final : public WebView {
public:
    /// `session` says where the web engine keeps its data.
    explicit GtkWebView(WebKitNetworkSession* session);
    ~GtkWebView() override;
    GtkWebView(const GtkWebView&) = delete;
    GtkWebView& operator=(const GtkWebView&) = delete;

    WebKitWebView* view() const { return view_.get(); }
    GtkWidget* widget() const { return GTK_WIDGET(view_.get()); }

    /// Loads the page, or loads it anew.
    void loadPage();

    void evaluate(const std::string& script) override;
    void addUserScript(const std::string& script) override;
    void setMessageHandler(const std::string& name, MessageHandler handler) override;

private:
    struct Channel {
        const GtkWebView& view;
        std::string name;
        MessageHandler handler;
        gulong signal = 0;
    };

    static void loadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer self);
    static void processEnded(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer self);
    static void received(WebKitUserContentManager*, JSCValue* message, gpointer channel);
    static void evaluated(GObject*, GAsyncResult*, gpointer ended);

    void evaluateNow(const std::string& script, const std::function<void()>& ended);

    GlibReference<WebKitUserContentManager> content_;
    GlibReference<WebKitWebView> view_;
    std::map<std::string, std::unique_ptr<Channel>> channels_;
    ScriptQueue scripts_;
    bool showsPage_ = false;  // the document that stands, while another one may be on its way
};

}  // namespace velto::window
