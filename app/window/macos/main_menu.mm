#include "app/window/macos/main_menu.h"

#import "app/window/macos/VeltoView.h"

#include "platform/macos/foundation_text.h"

namespace velto::window {
namespace {

/// One entry that the system itself carries out; without a title it is a line between groups.
struct StandardItem {
    std::string_view es, en;
    SEL action;
    NSString* key;
    NSEventModifierFlags modifiers = NSEventModifierFlagCommand;
};

NSMenuItem* standardItem(const StandardItem& item, const AppLanguage& language) {
    if (item.en.empty()) return [NSMenuItem separatorItem];
    auto* entry = [[NSMenuItem alloc] initWithTitle:nsString(language.text(item.es, item.en))
                                             action:item.action
                                      keyEquivalent:item.key];
    entry.keyEquivalentModifierMask = item.modifiers;
    return entry;
}

/// A menu with that title, added to the bar.
NSMenu* addMenu(NSMenu* bar, std::string_view title) {
    auto* menu = [[NSMenu alloc] initWithTitle:nsString(title)];
    auto* entry = [[NSMenuItem alloc] initWithTitle:menu.title action:nil keyEquivalent:@""];
    entry.submenu = menu;
    [bar addItem:entry];
    return menu;
}

void fill(NSMenu* menu, std::initializer_list<StandardItem> items, const AppLanguage& language) {
    for (const auto& item : items) [menu addItem:standardItem(item, language)];
}

NSMenuItem* commandItem(const AppCommand& command, NSInteger tag, const VeltoApp& app,
                        const CommandReceiver& receiver) {
    NSString* key = command.key != 0 ? nsString({&command.key, 1}) : @"";
    auto* entry = [[NSMenuItem alloc] initWithTitle:nsString(app.title(command))
                                             action:receiver.action
                                      keyEquivalent:key];
    entry.keyEquivalentModifierMask =
        NSEventModifierFlagCommand | (command.shift ? NSEventModifierFlagShift : 0);
    entry.target = receiver.target;  // held weakly
    entry.tag = tag;
    return entry;
}

void fillWithCommands(NSMenu* menu, const VeltoApp& app, const CommandReceiver& receiver) {
    NSInteger tag = 0;
    for (const AppCommand& command : VeltoApp::commands()) {
        [menu addItem:commandItem(command, tag++, app, receiver)];
    }
}

}  // namespace

void installMainMenu(VeltoApp& app, const CommandReceiver& receiver) {
    const AppLanguage& language = app.language();
    NSApplication* application = NSApp;
    auto* bar = [[NSMenu alloc] initWithTitle:@""];
    constexpr auto optionCommand = NSEventModifierFlagOption | NSEventModifierFlagCommand;

    NSMenu* own = addMenu(bar, "Velto");
    fill(own,
         {{"Acerca de Velto", "About Velto", @selector(orderFrontStandardAboutPanel:), @""}, {}},
         language);
    [own addItem:commandItem(VeltoApp::settingsCommand(), settingsTag, app, receiver)];
    fill(own,
         {
             {},
             {"Ocultar Velto", "Hide Velto", @selector(hide:), @"h"},
             {"Ocultar otros", "Hide Others", @selector(hideOtherApplications:), @"h",
              optionCommand},
             {"Mostrar todo", "Show All", @selector(unhideAllApplications:), @""},
             {},
             {"Salir de Velto", "Quit Velto", @selector(terminate:), @"q"},
         },
         language);
    fillWithCommands(addMenu(bar, language.text("Acciones", "Actions")), app, receiver);
    // Without "Redo": its shortcut belongs to taking back the last cleanup.
    fill(addMenu(bar, language.text("Edición", "Edit")),
         {
             {"Deshacer", "Undo", @selector(undo:), @"z"},
             {},
             {"Cortar", "Cut", @selector(cut:), @"x"},
             {"Copiar", "Copy", @selector(copy:), @"c"},
             {"Pegar", "Paste", @selector(paste:), @"v"},
             {"Seleccionar todo", "Select All", @selector(selectAll:), @"a"},
         },
         language);
    // Carried out by the view that holds the page.
    fill(addMenu(bar, language.text("Visualización", "View")),
         {
             {"Aumentar", "Zoom In", @selector(enlargePage:), @"+"},
             {"Reducir", "Zoom Out", @selector(reducePage:), @"-"},
             {"Tamaño real", "Actual Size", @selector(showPageAsItIs:), @"0"},
         },
         language);
    NSMenu* windowMenu = addMenu(bar, language.text("Ventana", "Window"));
    fill(windowMenu,
         {
             {"Cerrar", "Close", @selector(performClose:), @"w"},
             {"Minimizar", "Minimize", @selector(performMiniaturize:), @"m"},
             {"Zoom", "Zoom", @selector(performZoom:), @""},
             {},
             {"Traer todo al frente", "Bring All to Front", @selector(arrangeInFront:), @""},
         },
         language);
    NSMenu* helpMenu = addMenu(bar, language.text("Ayuda", "Help"));
    [helpMenu addItem:commandItem(VeltoApp::guideCommand(), guideTag, app, receiver)];

    application.mainMenu = bar;
    application.helpMenu = helpMenu;       // the system adds its search through the menus
    application.windowsMenu = windowMenu;  // the system adds the open windows to it
}

}  // namespace velto::window
