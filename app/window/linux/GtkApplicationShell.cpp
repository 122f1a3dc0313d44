#include "app/window/linux/GtkApplicationShell.h"

#include <memory>
#include <utility>

namespace velto::window {
namespace {

using Answer = std::function<void(bool)>;

void responded(GtkDialog* dialog, int response, gpointer data) {
    const std::unique_ptr<Answer> answer(static_cast<Answer*>(data));
    gtk_window_destroy(GTK_WINDOW(dialog));
    (*answer)(response == GTK_RESPONSE_ACCEPT);
}

}  // namespace

void GtkApplicationShell::activate() { g_application_activate(G_APPLICATION(application_)); }

void GtkApplicationShell::confirm(const Confirmation& question, Answer answer) {
    GtkWidget* const dialog = GTK_WIDGET(g_object_new(
        GTK_TYPE_MESSAGE_DIALOG, "transient-for", gtk_application_get_active_window(application_),
        "modal", TRUE, "use-header-bar", 0, "message-type", GTK_MESSAGE_QUESTION, "text",
        question.title.c_str(), "secondary-text", question.body.c_str(), nullptr));
    gtk_widget_add_css_class(dialog, "velto-question");
    // "Cancel" is also the response to Escape and to closing the dialog.
    gtk_dialog_add_button(GTK_DIALOG(dialog), question.decline.c_str(), GTK_RESPONSE_CANCEL);
    gtk_dialog_add_button(GTK_DIALOG(dialog), question.accept.c_str(), GTK_RESPONSE_ACCEPT);
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
    g_signal_connect(dialog, "response", G_CALLBACK(responded),
                     std::make_unique<Answer>(std::move(answer)).release());
    gtk_window_present(GTK_WINDOW(dialog));
    gtk_widget_grab_focus(
        gtk_dialog_get_widget_for_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL));
}

}  // namespace velto::window
