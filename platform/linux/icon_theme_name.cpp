#include "platform/linux/icon_theme_name.h"

#include <gio/gio.h>

#include <memory>
#include <string_view>

#include "platform/linux/glib_pointers.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr ReadLimit settingsLimit = anyFile(64 * 1024);

struct FreeKeyFile {
    void operator()(GKeyFile* file) const { g_key_file_unref(file); }
};
struct FreeSchema {
    void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
};

/// "gtk-icon-theme-name" of a settings.ini.
std::string themeIn(const std::string& text) {
    const std::unique_ptr<GKeyFile, FreeKeyFile> keys(g_key_file_new());
    if (g_key_file_load_from_data(keys.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr) ==
        FALSE) {
        return {};
    }
    const GlibText name(
        g_key_file_get_string(keys.get(), "Settings", "gtk-icon-theme-name", nullptr));
    return name ? validUtf8(name.get()) : std::string();
}

/// Asking for settings without a schema would end the program.
std::string themeOfGnome() {
    constexpr const char* schemaName = "org.gnome.desktop.interface";
    constexpr const char* key = "icon-theme";
    GSettingsSchemaSource* const source = g_settings_schema_source_get_default();
    if (source == nullptr) return {};
    const std::unique_ptr<GSettingsSchema, FreeSchema> schema(
        g_settings_schema_source_lookup(source, schemaName, TRUE));
    if (!schema || g_settings_schema_has_key(schema.get(), key) == FALSE) return {};
    const GlibReference<GSettings> settings(g_settings_new(schemaName));
    const GlibText name(g_settings_get_string(settings.get(), key));
    return name ? validUtf8(name.get()) : std::string();
}

}  // namespace

std::string iconThemeName(const FileManager& files, const std::string& configuration) {
    for (const char* file : {"/gtk-4.0/settings.ini", "/gtk-3.0/settings.ini"}) {
        try {
            std::string theme = themeIn(files.read(configuration + file, settingsLimit));
            if (!theme.empty()) return theme;
        } catch (const FileError&) {
            continue;  // most desktops leave them to themselves
        }
    }
    return themeOfGnome();
}

}  // namespace velto
