#include "app/window/linux/GtkWebView.h"

#include <array>
#include <utility>

#include <nlohmann/json.hpp>

#include "app/window/linux/web_settings.h"
#include "app/window/navigation.h"
#include "app/window/window_rules.h"
#include "platform/values/parse_json.h"

namespace velto::window {

GtkWebView::GtkWebView(WebKitNetworkSession* session)
    : content_(webkit_user_content_manager_new()),
      scripts_([this](const std::string& script, const std::function<void()>& ended) {
          evaluateNow(script, ended);
      }) {
    const auto settings = pageSettings();
    view_.reset(WEBKIT_WEB_VIEW(g_object_ref_sink(
        g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session, "user-content-manager",
                     content_.get(), "settings", settings.get(), nullptr))));
    // Before everyone else's: who hears of a load finds it known here.
    g_signal_connect(view_.get(), "load-changed", G_CALLBACK(&GtkWebView::loadChanged), this);
    g_signal_connect(view_.get(), "web-process-terminated", G_CALLBACK(&GtkWebView::processEnded),
                     this);
    addUserScript(platformScript("linux"));
}

GtkWebView::~GtkWebView() {
    g_signal_handlers_disconnect_by_data(view_.get(), this);
    for (const auto& [name, channel] : channels_) {
        g_signal_handler_disconnect(content_.get(), channel->signal);
        webkit_user_content_manager_unregister_script_message_handler(content_.get(), name.c_str(),
                                                                      nullptr);
    }
}

void GtkWebView::loadPage() {
    webkit_web_view_load_uri(view_.get(), std::string(pageAddress).c_str());
}

void GtkWebView::loadChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer self) {
    if (event != WEBKIT_LOAD_COMMITTED) return;
    const char* const uri = webkit_web_view_get_uri(view);
    auto& page = *static_cast<GtkWebView*>(self);
    page.showsPage_ = uri != nullptr && maySpeak(uri, true);
    page.scripts_.clear();
}

void GtkWebView::processEnded(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer self) {
    auto& page = *static_cast<GtkWebView*>(self);
    page.showsPage_ = false;
    page.scripts_.clear();
}

void GtkWebView::evaluate(const std::string& script) {
    if (showsPage_) scripts_.put(script);
}

void GtkWebView::evaluateNow(const std::string& script, const std::function<void()>& ended) {
    using Ended = std::function<void()>;
    webkit_web_view_evaluate_javascript(
        view_.get(), script.data(), static_cast<gssize>(script.size()), nullptr, nullptr, nullptr,
        ended ? &GtkWebView::evaluated : nullptr, ended ? new Ended(ended) : nullptr);
}

void GtkWebView::evaluated(GObject*, GAsyncResult*, gpointer ended) {
    const std::unique_ptr<std::function<void()>> call(static_cast<std::function<void()>*>(ended));
    (*call)();
}

void GtkWebView::addUserScript(const std::string& script) {
    const std::string address(pageAddress);
    const std::array<const char*, 2> allowed{address.c_str(), nullptr};
    WebKitUserScript* const userScript = webkit_user_script_new(
        script.c_str(), WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
        WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, allowed.data(), nullptr);
    webkit_user_content_manager_add_script(content_.get(), userScript);
    webkit_user_script_unref(userScript);
}

void GtkWebView::setMessageHandler(const std::string& name, MessageHandler handler) {
    if (const auto known = channels_.find(name); known != channels_.end()) {
        known->second->handler = std::move(handler);
        return;
    }
    auto channel = std::make_unique<Channel>(Channel{*this, name, std::move(handler)});
    // Connected before it is registered, so that no message is missed.
    channel->signal = g_signal_connect(content_.get(), ("script-message-received::" + name).c_str(),
                                       G_CALLBACK(&GtkWebView::received), channel.get());
    webkit_user_content_manager_register_script_message_handler(content_.get(), name.c_str(),
                                                                nullptr);
    channels_.emplace(name, std::move(channel));
}

// The engine does not tell the frame; a frame inside the page could only hold what the page's
// policy and the policy of navigations refuse.
void GtkWebView::received(WebKitUserContentManager*, JSCValue* message, gpointer channel) {
    const auto& [view, name, handler, signal] = *static_cast<const Channel*>(channel);
    if (!view.showsPage_) return;
    const GlibText text(jsc_value_to_json(message, 0));
    if (!text) {
        // JSON has no such value (a function, a circle): no intent can be in it.
        jsc_context_clear_exception(jsc_value_get_context(message));
        return;
    }
    if (const auto body = tryParseJson(text.get())) handler(name, *body);
}

}  // namespace velto::window
