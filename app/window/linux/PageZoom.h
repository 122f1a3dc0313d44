#pragma once

#include <functional>

#include "app/window/linux/gtk.h"
#include "platform/UserDefaults.h"

namespace velto::window {

/// The keys that show the page larger, smaller, and as large as it is. Main thread.
class PageZoom {
public:
    /// Everything outlives the object but the window, which may go first. `changed` is called after
    /// every change.
    PageZoom(GtkApplication* application, GtkWindow* window, WebKitWebView* view,
             UserDefaults& defaults, std::function<void()> changed);
    PageZoom(const PageZoom&) = delete;
    PageZoom& operator=(const PageZoom&) = delete;

    double current() const;

private:
    static void grow(GSimpleAction*, GVariant*, gpointer self);
    static void shrink(GSimpleAction*, GVariant*, gpointer self);
    static void reset(GSimpleAction*, GVariant*, gpointer self);

    void show(double zoom);

    WebKitWebView* view_;
    UserDefaults& defaults_;
    std::function<void()> changed_;
};

}  // namespace velto::window
