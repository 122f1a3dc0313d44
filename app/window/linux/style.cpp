#include "app/window/linux/style.h"

#include <fmt/format.h>

#include <string>

#include "app/window/window_rules.h"

namespace velto::window {
namespace {

// Where nothing composes windows GTK draws a frame to resize by instead of a shadow; it keeps one
// hairline of it.
constexpr const char* sheet = R"css(
window.velto, window.velto-question, window.velto-question .titlebar {{
    background: rgb({0}, {1}, {2});
}}
window.velto.csd:not(.maximized):not(.fullscreen):not(.tiled),
window.velto.csd:not(.maximized):not(.fullscreen):not(.tiled) > overlay {{
    border-radius: 12px;
}}
window.velto.solid-csd {{
    border-color: transparent;
    box-shadow: inset 0 0 0 1px alpha(currentColor, 0.15);
}}
.velto-corner {{
    padding: 0 8px;
}}
)css";

}  // namespace

GdkRGBA backgroundOf(Appearance appearance) {
    const Colour colour = backgroundColour(appearance);
    const auto share = [](int value) { return static_cast<float>(value) / 255; };
    return {share(colour.red), share(colour.green), share(colour.blue), 1};
}

Style::Style() : provider_(gtk_css_provider_new()) {
    gtk_style_context_add_provider_for_display(gdk_display_get_default(),
                                               GTK_STYLE_PROVIDER(provider_.get()),
                                               GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

Style::~Style() {
    gtk_style_context_remove_provider_for_display(gdk_display_get_default(),
                                                  GTK_STYLE_PROVIDER(provider_.get()));
}

void Style::show(Appearance appearance) {
    const Colour colour = backgroundColour(appearance);
    const std::string text = fmt::format(sheet, colour.red, colour.green, colour.blue);
    gtk_css_provider_load_from_data(provider_.get(), text.c_str(), -1);
}

}  // namespace velto::window
