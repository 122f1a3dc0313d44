#include "app/window/linux/PageZoom.h"

#include <array>
#include <string>
#include <utility>

#include "app/window/zoom.h"

namespace velto::window {
namespace {

struct ZoomKeys {
    const char* action;
    std::array<const char*, 4> shortcuts;  // ends with null
};

// A keyboard has the plus sign on a key of its own, above the equals sign, or among the figures.
constexpr ZoomKeys larger{"zoom-in",
                          {"<Control>plus", "<Control>equal", "<Control>KP_Add", nullptr}};
constexpr ZoomKeys smaller{"zoom-out", {"<Control>minus", "<Control>KP_Subtract", nullptr}};
constexpr ZoomKeys asItIs{"zoom-reset", {"<Control>0", "<Control>KP_0", nullptr}};

PageZoom& of(gpointer self) { return *static_cast<PageZoom*>(self); }

void addAction(GtkApplication* application, GtkWindow* window, const ZoomKeys& keys,
               GCallback callback, PageZoom* zoom) {
    const GlibReference<GSimpleAction> action(g_simple_action_new(keys.action, nullptr));
    g_signal_connect(action.get(), "activate", callback, zoom);
    g_action_map_add_action(G_ACTION_MAP(window), G_ACTION(action.get()));
    gtk_application_set_accels_for_action(application, (std::string("win.") + keys.action).c_str(),
                                          keys.shortcuts.data());
}

}  // namespace

PageZoom::PageZoom(GtkApplication* application, GtkWindow* window, WebKitWebView* view,
                   UserDefaults& defaults, std::function<void()> changed)
    : view_(view), defaults_(defaults), changed_(std::move(changed)) {
    addAction(application, window, larger, G_CALLBACK(&PageZoom::grow), this);
    addAction(application, window, smaller, G_CALLBACK(&PageZoom::shrink), this);
    addAction(application, window, asItIs, G_CALLBACK(&PageZoom::reset), this);
    const double kept = keptZoom(defaults);
    if (kept != ownSize) webkit_web_view_set_zoom_level(view_, kept);
}

double PageZoom::current() const { return webkit_web_view_get_zoom_level(view_); }

void PageZoom::grow(GSimpleAction*, GVariant*, gpointer self) {
    of(self).show(zoomedIn(of(self).current()));
}

void PageZoom::shrink(GSimpleAction*, GVariant*, gpointer self) {
    of(self).show(zoomedOut(of(self).current()));
}

void PageZoom::reset(GSimpleAction*, GVariant*, gpointer self) { of(self).show(ownSize); }

void PageZoom::show(double zoom) {
    if (zoom == current()) return;
    webkit_web_view_set_zoom_level(view_, zoom);
    keepZoom(defaults_, zoom);
    changed_();
}

}  // namespace velto::window
