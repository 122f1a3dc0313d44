#include "app/window/linux/web_refusals.h"

namespace velto::window {
namespace {

constexpr gboolean answered = TRUE;

GtkWidget* create(WebKitWebView*, WebKitNavigationAction*, gpointer) { return nullptr; }

gboolean permissionRequest(WebKitWebView*, WebKitPermissionRequest* request, gpointer) {
    webkit_permission_request_deny(request);
    return answered;
}

gboolean permissionState(WebKitWebView*, WebKitPermissionStateQuery* query, gpointer) {
    webkit_permission_state_query_finish(query, WEBKIT_PERMISSION_STATE_DENIED);
    return answered;
}

gboolean authenticate(WebKitWebView*, WebKitAuthenticationRequest* request, gpointer) {
    webkit_authentication_request_cancel(request);
    return answered;
}

gboolean fileChooser(WebKitWebView*, WebKitFileChooserRequest* request, gpointer) {
    webkit_file_chooser_request_cancel(request);
    return answered;
}

gboolean colourChooser(WebKitWebView*, WebKitColorChooserRequest* request, gpointer) {
    webkit_color_chooser_request_cancel(request);
    return answered;
}

gboolean scriptDialog(WebKitWebView*, WebKitScriptDialog* dialog, gpointer) {
    // Whoever wants to keep the page from being loaded anew is not asked.
    if (webkit_script_dialog_get_dialog_type(dialog) ==
        WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM) {
        webkit_script_dialog_confirm_set_confirmed(dialog, TRUE);
    }
    return answered;
}

gboolean print(WebKitWebView*, WebKitPrintOperation*, gpointer) { return answered; }

gboolean notification(WebKitWebView*, WebKitNotification* shown, gpointer) {
    webkit_notification_close(shown);
    return answered;
}

bool takesDrops(GtkEventController* controller) {
    return GTK_IS_DROP_TARGET_ASYNC(controller) || GTK_IS_DROP_TARGET(controller);
}

}  // namespace

void refuseRequests(WebKitWebView* view) {
    g_signal_connect(view, "create", G_CALLBACK(create), nullptr);
    g_signal_connect(view, "permission-request", G_CALLBACK(permissionRequest), nullptr);
    g_signal_connect(view, "query-permission-state", G_CALLBACK(permissionState), nullptr);
    g_signal_connect(view, "authenticate", G_CALLBACK(authenticate), nullptr);
    g_signal_connect(view, "run-file-chooser", G_CALLBACK(fileChooser), nullptr);
    g_signal_connect(view, "run-color-chooser", G_CALLBACK(colourChooser), nullptr);
    g_signal_connect(view, "script-dialog", G_CALLBACK(scriptDialog), nullptr);
    g_signal_connect(view, "print", G_CALLBACK(print), nullptr);
    g_signal_connect(view, "show-notification", G_CALLBACK(notification), nullptr);
}

void refuseDrops(GtkWidget* view) {
    const GlibReference<GListModel> controllers(gtk_widget_observe_controllers(view));
    for (guint index = g_list_model_get_n_items(controllers.get()); index-- > 0;) {
        const GlibReference<GtkEventController> controller(
            GTK_EVENT_CONTROLLER(g_list_model_get_item(controllers.get(), index)));
        if (!takesDrops(controller.get())) continue;
        // The view knows it without holding it, so it stays as long as the view does.
        g_object_set_data_full(G_OBJECT(view), "velto-drop-target", g_object_ref(controller.get()),
                               g_object_unref);
        gtk_widget_remove_controller(view, controller.get());
    }
}

}  // namespace velto::window
