#include "platform/linux/LauncherEntry.h"

#include <gio/gio.h>

#include <string>

#include "platform/Platform.h"

namespace velto {

void LauncherEntry::tell(double fraction, bool isVisible) {
    if (bus_ == nullptr) return;
    const std::string launcher = std::string("application://") + programIdentifier + ".desktop";
    const std::string object =
        "/com/canonical/unity/launcherentry/" + std::to_string(g_str_hash(launcher.c_str()));
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&properties, "{sv}", "progress", g_variant_new_double(fraction));
    g_variant_builder_add(&properties, "{sv}", "progress-visible",
                          g_variant_new_boolean(isVisible ? TRUE : FALSE));
    // A closed bus has nobody to tell.
    g_dbus_connection_emit_signal(
        bus_, nullptr, object.c_str(), "com.canonical.Unity.LauncherEntry", "Update",
        g_variant_new("(sa{sv})", launcher.c_str(), &properties), nullptr);
}

}  // namespace velto
