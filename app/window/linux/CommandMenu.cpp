#include "app/window/linux/CommandMenu.h"

#include <fmt/format.h>

#include <string>

namespace velto::window {
namespace {

std::string shortcutOf(const AppCommand& command) {
    if (command.key == 0) return {};
    return fmt::format("<Control>{}{}", command.shift ? "<Shift>" : "", command.key);
}

void quit(GSimpleAction*, GVariant*, gpointer application) {
    g_application_quit(G_APPLICATION(application));
}

}  // namespace

CommandMenu::CommandMenu(VeltoApp& app, GtkApplication* application)
    : app_(app),
      application_(application),
      menu_(g_menu_new()),
      alive_(std::make_shared<bool>(true)) {
    for (const AppCommand& command : VeltoApp::commands()) {
        entries_.push_back(std::make_unique<Entry>(Entry{app, command}));
        addAction(command.action.data(), shortcutOf(command).c_str(),
                  G_CALLBACK(&CommandMenu::perform), entries_.back().get());
    }
    guide_ = std::make_unique<Entry>(Entry{app, VeltoApp::guideCommand()});
    addAction("guide", "", G_CALLBACK(&CommandMenu::perform), guide_.get());
    addAction("quit", "<Control>q", G_CALLBACK(quit), application);
    update();
    app.language().observe([this, alive = std::weak_ptr<bool>(alive_)] {
        if (!alive.expired()) update();
    });
}

CommandMenu::~CommandMenu() {
    for (const auto& entry : entries_) {
        g_action_map_remove_action(G_ACTION_MAP(application_), entry->command.action.data());
    }
    g_action_map_remove_action(G_ACTION_MAP(application_), "guide");
    if (button_ != nullptr) {
        g_object_remove_weak_pointer(G_OBJECT(button_), reinterpret_cast<gpointer*>(&button_));
    }
}

GtkWidget* CommandMenu::makeButton() {
    GtkWidget* const button = gtk_menu_button_new();
    gtk_menu_button_set_icon_name(GTK_MENU_BUTTON(button), "open-menu-symbolic");
    gtk_menu_button_set_has_frame(GTK_MENU_BUTTON(button), FALSE);
    gtk_menu_button_set_menu_model(GTK_MENU_BUTTON(button), G_MENU_MODEL(menu_.get()));
    gtk_menu_button_set_primary(GTK_MENU_BUTTON(button), TRUE);
    g_set_weak_pointer(&button_, button);
    update();
    return button;
}

void CommandMenu::addAction(const char* name, const char* shortcut, GCallback callback,
                            gpointer data) {
    const GlibReference<GSimpleAction> action(g_simple_action_new(name, nullptr));
    g_signal_connect(action.get(), "activate", callback, data);
    g_action_map_add_action(G_ACTION_MAP(application_), G_ACTION(action.get()));
    if (*shortcut == '\0') return;
    const char* const shortcuts[] = {shortcut, nullptr};
    gtk_application_set_accels_for_action(application_, fmt::format("app.{}", name).c_str(),
                                          shortcuts);
}

void CommandMenu::perform(GSimpleAction*, GVariant*, gpointer entry) {
    const auto& [app, command] = *static_cast<const Entry*>(entry);
    app.performWhenShown(command);
}

void CommandMenu::update() {
    g_menu_remove_all(menu_.get());
    const GlibReference<GMenu> commands(g_menu_new());
    for (const auto& entry : entries_) {
        const std::string title(app_.title(entry->command));
        const std::string action = fmt::format("app.{}", entry->command.action);
        g_menu_append(commands.get(), title.c_str(), action.c_str());
    }
    const GlibReference<GMenu> end(g_menu_new());
    const std::string guideTitle(app_.title(guide_->command));
    g_menu_append(end.get(), guideTitle.c_str(), "app.guide");
    const std::string quitTitle(app_.language().text("Salir de Velto", "Quit Velto"));
    g_menu_append(end.get(), quitTitle.c_str(), "app.quit");
    g_menu_append_section(menu_.get(), nullptr, G_MENU_MODEL(commands.get()));
    g_menu_append_section(menu_.get(), nullptr, G_MENU_MODEL(end.get()));
    if (button_ != nullptr) {
        const std::string title(app_.language().text("Menú", "Menu"));
        gtk_widget_set_tooltip_text(button_, title.c_str());
    }
}

}  // namespace velto::window
