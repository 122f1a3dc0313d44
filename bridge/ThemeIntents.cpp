#include "bridge/ThemeIntents.h"

#include <string>

namespace velto {

void ThemeIntents::onSetTheme(const Payload& payload) {
    const auto theme = payload::stringMember(payload, "theme");
    if (!theme) return;
    const Appearance wanted = *theme == "light" ? Appearance::light : Appearance::dark;
    if (wanted == context_.shell.appearance()) return context_.shell.keepAppearance();
    context_.shell.setAppearance(wanted);
    context_.platform.log->line("Velto ▶ tema de la ventana: " + appearanceName(wanted));
}

void ThemeIntents::onFollowSystemTheme(const Payload&) {
    context_.shell.followSystemAppearance();
    context_.platform.log->line("Velto ▶ tema de la ventana: el del sistema");
}

}  // namespace velto
