#pragma once

#include <memory>
#include <vector>

#include "app/VeltoApp.h"
#include "app/window/linux/gtk.h"

namespace velto::window {

/// The application's commands as actions with shortcuts, and the menu that shows them in the
/// current language.
class CommandMenu {
public:
    /// `app` and `application` outlive the menu.
    CommandMenu(VeltoApp& app, GtkApplication* application);
    ~CommandMenu();
    CommandMenu(const CommandMenu&) = delete;
    CommandMenu& operator=(const CommandMenu&) = delete;

    /// A button that opens the menu, also with F10.
    GtkWidget* makeButton();

private:
    struct Entry {
        VeltoApp& app;
        const AppCommand& command;
    };

    static void perform(GSimpleAction*, GVariant*, gpointer entry);

    void addAction(const char* name, const char* shortcut, GCallback callback, gpointer data);
    void update();

    VeltoApp& app_;
    GtkApplication* application_;
    std::vector<std::unique_ptr<Entry>> entries_;
    std::unique_ptr<Entry> guide_;
    GlibReference<GMenu> menu_;
    GtkWidget* button_ = nullptr;  // null while no window has one
    std::shared_ptr<bool> alive_;  // the language keeps its observers longer than this lives
};

}  // namespace velto::window
