#include "app/window/linux/context_menu.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <vector>

namespace velto::window {
namespace {

using testing::ElementsAre;

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Menu = std::unique_ptr<WebKitContextMenu, Unref>;

constexpr auto separator = WEBKIT_CONTEXT_MENU_ACTION_NO_ACTION;
constexpr auto copy = WEBKIT_CONTEXT_MENU_ACTION_COPY;
constexpr auto selectAll = WEBKIT_CONTEXT_MENU_ACTION_SELECT_ALL;
constexpr auto inspect = WEBKIT_CONTEXT_MENU_ACTION_INSPECT_ELEMENT;

WebKitContextMenuItem* itemOf(WebKitContextMenuAction action) {
    return action == separator ? webkit_context_menu_item_new_separator()
                               : webkit_context_menu_item_new_from_stock_action(action);
}

Menu menuOf(std::initializer_list<WebKitContextMenuAction> actions) {
    Menu menu(WEBKIT_CONTEXT_MENU(g_object_ref_sink(webkit_context_menu_new())));
    for (const WebKitContextMenuAction action : actions)
        webkit_context_menu_append(menu.get(), itemOf(action));
    return menu;
}

std::vector<WebKitContextMenuAction> actionsOf(WebKitContextMenu* menu) {
    std::vector<WebKitContextMenuAction> actions;
    for (guint index = 0; index < webkit_context_menu_get_n_items(menu); ++index) {
        WebKitContextMenuItem* const item = webkit_context_menu_get_item_at_position(menu, index);
        actions.push_back(webkit_context_menu_item_is_separator(item) != FALSE
                              ? separator
                              : webkit_context_menu_item_get_stock_action(item));
    }
    return actions;
}

TEST(ContextMenu, LosesTheInspectorWithTheSeparatorBeforeIt) {
    const Menu menu = menuOf({copy, separator, selectAll, separator, inspect});
    removeUnwantedItems(menu.get());
    EXPECT_THAT(actionsOf(menu.get()), ElementsAre(copy, separator, selectAll));
}

TEST(ContextMenu, OfTwoSeparatorsAroundTheInspectorOneStays) {
    const Menu menu = menuOf({copy, separator, inspect, separator, selectAll});
    removeUnwantedItems(menu.get());
    EXPECT_THAT(actionsOf(menu.get()), ElementsAre(copy, separator, selectAll));
}

TEST(ContextMenu, OfTheInspectorAloneNothingIsLeft) {
    const Menu menu = menuOf({separator, inspect});
    removeUnwantedItems(menu.get());
    EXPECT_EQ(webkit_context_menu_get_n_items(menu.get()), 0U);
}

TEST(ContextMenu, OfAPlaceWithoutTextNothingIsLeft) {
    const Menu menu = menuOf(
        {WEBKIT_CONTEXT_MENU_ACTION_GO_BACK, WEBKIT_CONTEXT_MENU_ACTION_GO_FORWARD,
         WEBKIT_CONTEXT_MENU_ACTION_STOP, WEBKIT_CONTEXT_MENU_ACTION_RELOAD, separator, inspect});
    removeUnwantedItems(menu.get());
    EXPECT_EQ(webkit_context_menu_get_n_items(menu.get()), 0U);
}

TEST(ContextMenu, AnActionOfThatNameGoesFromSubmenusToo) {
    const Menu menu = menuOf({copy});
    const Menu inner = menuOf({selectAll});
    const std::unique_ptr<GSimpleAction, Unref> action(
        g_simple_action_new("inspect-accessibility", nullptr));
    webkit_context_menu_append(inner.get(), webkit_context_menu_item_new_from_gaction(
                                                G_ACTION(action.get()), "Whatever", nullptr));
    webkit_context_menu_append(menu.get(),
                               webkit_context_menu_item_new_with_submenu("More", inner.get()));
    removeUnwantedItems(menu.get());
    EXPECT_EQ(webkit_context_menu_get_n_items(menu.get()), 2U);
    EXPECT_THAT(actionsOf(inner.get()), ElementsAre(selectAll));
}

}  // namespace
}  // namespace velto::window
