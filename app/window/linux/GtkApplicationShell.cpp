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

using FolderAnswer = ApplicationShell::FolderAnswer;

void chosen(GtkNativeDialog* dialog, int response, gpointer data) {
    const std::unique_ptr<FolderAnswer> answer(static_cast<FolderAnswer*>(data));
    std::optional<std::string> folder;
    if (response == GTK_RESPONSE_ACCEPT) {
        const GlibReference<GFile> file(gtk_file_chooser_get_file(GTK_FILE_CHOOSER(dialog)));
        const GlibText path(file ? g_file_get_path(file.get()) : nullptr);
        if (path) folder = path.get();  // else it is no folder of this machine
    }
    g_object_unref(dialog);
    (*answer)(std::move(folder));
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

/// The desktop's own dialog where it offers one, else the toolkit's.
void GtkApplicationShell::chooseFolder(const FolderQuestion& question, FolderAnswer answer) {
    GtkFileChooserNative* const dialog = gtk_file_chooser_native_new(
        question.title.c_str(), gtk_application_get_active_window(application_),
        GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER, question.accept.c_str(), question.decline.c_str());
    gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(dialog), TRUE);
    const GlibReference<GFile> start(g_file_new_for_path(question.startAt.c_str()));
    gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), start.get(), nullptr);
    g_signal_connect(dialog, "response", G_CALLBACK(chosen),
                     std::make_unique<FolderAnswer>(std::move(answer)).release());
    gtk_native_dialog_show(GTK_NATIVE_DIALOG(dialog));
}

}  // namespace velto::window
