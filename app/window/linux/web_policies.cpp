#include "app/window/linux/web_policies.h"

#include <string>

#include "app/window/linux/context_menu.h"
#include "app/window/linux/web_refusals.h"
#include "app/window/navigation.h"

namespace velto::window {
namespace {

std::string textOf(const char* text) { return text == nullptr ? std::string() : text; }

NavigationKind kindOf(WebKitNavigationAction* action) {
    switch (webkit_navigation_action_get_navigation_type(action)) {
        case WEBKIT_NAVIGATION_TYPE_LINK_CLICKED:
            return NavigationKind::linkFollowed;
        case WEBKIT_NAVIGATION_TYPE_FORM_SUBMITTED:
        case WEBKIT_NAVIGATION_TYPE_FORM_RESUBMITTED:
            return NavigationKind::formSent;
        default:
            return NavigationKind::other;
    }
}

void settle(WebKitPolicyDecision* decision, bool allowed) {
    if (allowed) {
        webkit_policy_decision_use(decision);
    } else {
        webkit_policy_decision_ignore(decision);
    }
}

void decideNavigation(WebKitPolicyDecision* decision, NavigationTarget target, Platform& platform) {
    WebKitNavigationAction* const action = webkit_navigation_policy_decision_get_navigation_action(
        WEBKIT_NAVIGATION_POLICY_DECISION(decision));
    const std::string address =
        textOf(webkit_uri_request_get_uri(webkit_navigation_action_get_request(action)));
    const NavigationPolicy policy =
        policyFor({.kind = kindOf(action), .target = target, .address = address});
    settle(decision, policy == NavigationPolicy::allow);
    if (policy == NavigationPolicy::openInBrowser) platform.workspace->openURL(address);
    if (policy == NavigationPolicy::refuse) platform.log->line(refusalLine(address));
}

/// A frame inside the page is told from the page itself here at the latest.
void decideResponse(WebKitResponsePolicyDecision* decision, Platform& platform) {
    WebKitURIResponse* const response = webkit_response_policy_decision_get_response(decision);
    const std::string address = textOf(webkit_uri_response_get_uri(response));
    const std::string type = textOf(webkit_uri_response_get_mime_type(response));
    const bool isMainFrame =
        webkit_response_policy_decision_is_main_frame_main_resource(decision) != FALSE;
    const bool allowed = mayBeShown({.address = address, .type = type, .isMainFrame = isMainFrame});
    settle(WEBKIT_POLICY_DECISION(decision), allowed);
    if (!allowed) platform.log->line(refusalLine(address));
}

gboolean decidePolicy(WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type,
                      gpointer data) {
    Platform& platform = *static_cast<Platform*>(data);
    if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
        decideResponse(WEBKIT_RESPONSE_POLICY_DECISION(decision), platform);
    } else {
        const bool beside = type == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION;
        decideNavigation(
            decision, beside ? NavigationTarget::newWindow : NavigationTarget::mainFrame, platform);
    }
    return TRUE;
}

gboolean contextMenu(WebKitWebView*, WebKitContextMenu* menu, WebKitHitTestResult*, gpointer) {
    removeUnwantedItems(menu);
    const gboolean nothingToShow = webkit_context_menu_get_n_items(menu) == 0 ? TRUE : FALSE;
    return nothingToShow;
}

}  // namespace

void applyWebPolicies(WebKitWebView* view, Platform& platform) {
    g_signal_connect(view, "decide-policy", G_CALLBACK(decidePolicy), &platform);
    g_signal_connect(view, "context-menu", G_CALLBACK(contextMenu), nullptr);
    refuseRequests(view);
    refuseDrops(GTK_WIDGET(view));
}

std::shared_ptr<GtkWebView> openPage(WebKitNetworkSession* session, Platform& platform) {
    auto view = std::make_shared<GtkWebView>(session);
    applyWebPolicies(view->view(), platform);
    view->loadPage();
    return view;
}

}  // namespace velto::window
