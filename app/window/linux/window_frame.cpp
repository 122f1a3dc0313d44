#include "app/window/linux/window_frame.h"

#include <algorithm>
#include <limits>
#include <string>

#include "app/window/window_rules.h"

namespace velto::window {
namespace {

// The application's own keys, beside the documented ones.
constexpr const char* widthKey = "velto.window.width";
constexpr const char* heightKey = "velto.window.height";
constexpr const char* maximizedKey = "velto.window.maximized";

int stored(const UserDefaults& defaults, const char* key, int initial, int least) {
    const auto value = defaults.value(key);
    const auto* const number = value ? std::get_if<std::int64_t>(&*value) : nullptr;
    if (number == nullptr) return initial;
    constexpr std::int64_t most = std::numeric_limits<std::int16_t>::max();  // X11's own limit
    return static_cast<int>(std::clamp<std::int64_t>(*number, least, most));
}

}  // namespace

void restoreFrame(GtkWindow* window, const UserDefaults& defaults) {
    gtk_widget_set_size_request(GTK_WIDGET(window), minimumWidth, minimumHeight);
    gtk_window_set_default_size(window, stored(defaults, widthKey, initialWidth, minimumWidth),
                                stored(defaults, heightKey, initialHeight, minimumHeight));
    const auto maximized = defaults.value(maximizedKey);
    if (maximized == DefaultsValue(true)) gtk_window_maximize(window);
}

void rememberFrame(GtkWindow* window, UserDefaults& defaults) {
    const bool maximized = gtk_window_is_maximized(window) != FALSE;
    int width = 0;
    int height = 0;
    gtk_window_get_default_size(window, &width, &height);
    const auto keep = [&](const char* key, const DefaultsValue& value) {
        if (defaults.value(key) != value) defaults.setValue(key, value);
    };
    if (width > 0) keep(widthKey, std::int64_t{width});
    if (height > 0) keep(heightKey, std::int64_t{height});
    keep(maximizedKey, maximized);
}

}  // namespace velto::window
