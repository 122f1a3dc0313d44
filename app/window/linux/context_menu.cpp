#include "app/window/linux/context_menu.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "app/window/window_rules.h"

namespace velto::window {
namespace {

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

/// What leads elsewhere in a browser; here there is one page, and it stays.
constexpr std::array browsing{WEBKIT_CONTEXT_MENU_ACTION_GO_BACK,
                              WEBKIT_CONTEXT_MENU_ACTION_GO_FORWARD,
                              WEBKIT_CONTEXT_MENU_ACTION_STOP, WEBKIT_CONTEXT_MENU_ACTION_RELOAD};

bool isUnwanted(WebKitContextMenuItem* item) {
    const auto stock = webkit_context_menu_item_get_stock_action(item);
    return std::find(browsing.begin(), browsing.end(), stock) != browsing.end() ||
           isDeveloperMenuItem(titleOf(item));
}

}  // namespace

void removeUnwantedItems(WebKitContextMenu* menu) {
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
        if (isUnwanted(item)) {
            webkit_context_menu_remove(menu, item);
            continue;
        }
        if (WebKitContextMenu* const submenu = webkit_context_menu_item_get_submenu(item)) {
            removeUnwantedItems(submenu);
        }
        separatorAllowed = true;
    }
}

}  // namespace velto::window
