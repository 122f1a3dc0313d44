#include "app/window/linux/GtkWebView.h"

#include <utility>

#include <nlohmann/json.hpp>

#include "app/window/window_rules.h"

namespace velto::window {
namespace {

/// The page is one local file: what serves browsing is off, and so are the developer tools.
GlibReference<WebKitSettings> makeSettings() {
    GlibReference<WebKitSettings> settings(webkit_settings_new());
    WebKitSettings* const raw = settings.get();
    webkit_settings_set_enable_developer_extras(raw, FALSE);
    webkit_settings_set_enable_back_forward_navigation_gestures(raw, FALSE);
    webkit_settings_set_enable_page_cache(raw, FALSE);
    webkit_settings_set_enable_media(raw, FALSE);
    webkit_settings_set_enable_webaudio(raw, FALSE);
    webkit_settings_set_enable_webgl(raw, FALSE);
    webkit_settings_set_enable_smooth_scrolling(raw, TRUE);
    return settings;
}

}  // namespace

GtkWebView::GtkWebView(WebKitNetworkSession* session)
    : content_(webkit_user_content_manager_new()) {
    const auto settings = makeSettings();
    view_.reset(WEBKIT_WEB_VIEW(g_object_ref_sink(
        g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session, "user-content-manager",
                     content_.get(), "settings", settings.get(), nullptr))));
    addUserScript(platformScript("linux"));
}

GtkWebView::~GtkWebView() {
    for (const auto& [name, channel] : channels_) {
        g_signal_handler_disconnect(content_.get(), channel->signal);
        webkit_user_content_manager_unregister_script_message_handler(content_.get(), name.c_str(),
                                                                      nullptr);
    }
}

void GtkWebView::evaluate(const std::string& script) {
    webkit_web_view_evaluate_javascript(view_.get(), script.data(),
                                        static_cast<gssize>(script.size()), nullptr, nullptr,
                                        nullptr, nullptr, nullptr);
}

void GtkWebView::addUserScript(const std::string& script) {
    WebKitUserScript* const userScript =
        webkit_user_script_new(script.c_str(), WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
                               WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, nullptr, nullptr);
    webkit_user_content_manager_add_script(content_.get(), userScript);
    webkit_user_script_unref(userScript);
}

void GtkWebView::setMessageHandler(const std::string& name, MessageHandler handler) {
    if (const auto known = channels_.find(name); known != channels_.end()) {
        known->second->handler = std::move(handler);
        return;
    }
    auto channel = std::make_unique<Channel>(Channel{name, std::move(handler)});
    // Connected before it is registered, so that no message is missed.
    channel->signal = g_signal_connect(content_.get(), ("script-message-received::" + name).c_str(),
                                       G_CALLBACK(&GtkWebView::received), channel.get());
    webkit_user_content_manager_register_script_message_handler(content_.get(), name.c_str(),
                                                                nullptr);
    channels_.emplace(name, std::move(channel));
}

void GtkWebView::received(WebKitUserContentManager*, JSCValue* message, gpointer channel) {
    const GlibText text(jsc_value_to_json(message, 0));
    if (!text) {
        // JSON has no such value (a function, a circle): no intent can be in it.
        jsc_context_clear_exception(jsc_value_get_context(message));
        return;
    }
    const auto body = nlohmann::json::parse(text.get(), nullptr, false);
    if (body.is_discarded()) return;
    const auto& [name, handler, signal] = *static_cast<const Channel*>(channel);
    handler(name, body);
}

}  // namespace velto::window
