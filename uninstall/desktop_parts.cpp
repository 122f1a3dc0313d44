#include "uninstall/desktop_parts.h"

#include <algorithm>
#include <array>

namespace velto {
namespace {

/// As the desktops call their own entries.
constexpr auto parts = std::to_array<std::string_view>({
    "org.gnome.Nautilus",
    "org.gnome.Settings",
    "gnome-control-center",
    "org.gnome.Software",
    "org.gnome.Extensions",
    "org.gnome.Shell.Extensions",  // GNOME
    "systemsettings",
    "kdesystemsettings",
    "org.kde.dolphin",
    "org.kde.discover",  // Plasma
    "xfce-settings-manager",
    "xfce4-settings-editor",
    "thunar",
    "thunar-settings",  // Xfce
    "cinnamon-settings",
    "nemo",  // Cinnamon
    "matecc",
    "caja-browser",
    "caja",  // MATE
    "lxqt-config",
    "pcmanfm-qt",             // LXQt
    "budgie-control-center",  // Budgie
    "com.system76.CosmicSettings",
    "com.system76.CosmicFiles",
    "com.system76.CosmicStore",
    "io.elementary.settings",
    "io.elementary.files",
    "io.elementary.appcenter",
    "software-properties-gtk",
    "update-manager",
    "gnome-language-selector",  // Ubuntu
    "nm-connection-editor",
});

}  // namespace

bool isPartOfDesktop(std::string_view identifier) {
    return std::ranges::find(parts, identifier) != parts.end();
}

}  // namespace velto
