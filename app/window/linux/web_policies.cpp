#include "app/window/linux/web_policies.h"

#include <string_view>

#include "app/window/window_rules.h"

namespace velto::window {
namespace {

const char* uriOf(WebKitNavigationAction* action) {
    return webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
}

NavigationKind kindOf(WebKitNavigationAction* action) {
    return webkit_navigation_action_get_navigation_type(action) ==
                   WEBKIT_NAVIGATION_TYPE_LINK_CLICKED
               ? NavigationKind::linkFollowed
               : NavigationKind::other;
}

gboolean decidePolicy(WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type,
                      gpointer data) {
    if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) return FALSE;  // the engine's own rule
    WebKitNavigationAction* const action = webkit_navigation_policy_decision_get_navigation_action(
        WEBKIT_NAVIGATION_POLICY_DECISION(decision));
    // The program has one window: a page for another one is the browser's.
    const bool elsewhere = type == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION ||
                           policyFor(kindOf(action)) == NavigationPolicy::openInBrowser;
    if (!elsewhere) {
        webkit_policy_decision_use(decision);
        return TRUE;
    }
    webkit_policy_decision_ignore(decision);
    if (const char* const uri = uriOf(action)) {
        static_cast<Platform*>(data)->workspace->openURL(uri);
    }
    return TRUE;
}

/// What the engine's menu calls an item. It does not tell titles: of its own entries those that
/// matter are named here, and the others answer with the name of their action.
std::string_view titleOf(WebKitContextMenuItem* item) {
    const auto stock = webkit_context_menu_item_get_stock_action(item);
    if (stock == WEBKIT_CONTEXT_MENU_ACTION_INSPECT_ELEMENT) return "Inspect Element";
    if (GAction* const action = webkit_context_menu_item_get_gaction(item)) {
        const char* const name = g_action_get_name(action);
        return name == nullptr ? std::string_view() : name;
    }
    return {};
}

void removeDeveloperItems(WebKitContextMenu* menu) {
    // From the end, so that removing moves nothing that is still to be seen; a separator goes when
    // nothing, or another one, follows it.
    bool separatorAllowed = false;
    for (guint index = webkit_context_menu_get_n_items(menu); index-- > 0;) {
        WebKitContextMenuItem* const item = webkit_context_menu_get_item_at_position(menu, index);
        if (webkit_context_menu_item_is_separator(item) != FALSE) {
            if (!separatorAllowed) webkit_context_menu_remove(menu, item);
            separatorAllowed = false;
            continue;
        }
        if (isDeveloperMenuItem(titleOf(item))) {
            webkit_context_menu_remove(menu, item);
            continue;
        }
        if (WebKitContextMenu* const submenu = webkit_context_menu_item_get_submenu(item)) {
            removeDeveloperItems(submenu);
        }
        separatorAllowed = true;
    }
}

gboolean contextMenu(WebKitWebView*, WebKitContextMenu* menu, WebKitHitTestResult*, gpointer) {
    removeDeveloperItems(menu);
    const gboolean nothingToShow = webkit_context_menu_get_n_items(menu) == 0 ? TRUE : FALSE;
    return nothingToShow;
}

}  // namespace

void applyWebPolicies(WebKitWebView* view, Platform& platform) {
    g_signal_connect(view, "decide-policy", G_CALLBACK(decidePolicy), &platform);
    g_signal_connect(view, "context-menu", G_CALLBACK(contextMenu), nullptr);
}

std::shared_ptr<GtkWebView> openPage(WebKitNetworkSession* session, Platform& platform,
                                     const std::string& pageUri) {
    auto view = std::make_shared<GtkWebView>(session);
    applyWebPolicies(view->view(), platform);
    webkit_web_view_load_uri(view->view(), pageUri.c_str());
    return view;
}

}  // namespace velto::window
