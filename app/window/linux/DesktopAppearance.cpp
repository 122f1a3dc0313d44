#include "app/window/linux/DesktopAppearance.h"

#include <array>
#include <string_view>
#include <utility>

#include "platform/values/text.h"

namespace velto::window {
namespace {

constexpr const char* preferDark = "gtk-application-prefer-dark-theme";
constexpr const char* themeName = "gtk-theme-name";
constexpr std::string_view darkSuffix = "-dark";  // as GTK and the web engine know dark themes

// The XDG desktop portal: 1 is dark, 2 is light, 0 is no preference.
constexpr const char* portalName = "org.freedesktop.portal.Desktop";
constexpr const char* portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* portalSettings = "org.freedesktop.portal.Settings";
constexpr const char* appearanceNamespace = "org.freedesktop.appearance";
constexpr const char* colourScheme = "color-scheme";

constexpr ReadLimit memoryLimit = ownFile(64);  // one word

constexpr const char* interfaceSchema = "org.gnome.desktop.interface";

std::string currentTheme(GtkSettings* settings) {
    char* name = nullptr;
    g_object_get(settings, themeName, &name, nullptr);
    const GlibText owned(name);
    return owned ? std::string(owned.get()) : std::string();
}

Appearance gtkAppearance(GtkSettings* settings) {
    gboolean dark = FALSE;
    g_object_get(settings, preferDark, &dark, nullptr);
    const bool darkTheme = currentTheme(settings).ends_with(darkSuffix);
    return dark != FALSE || darkTheme ? Appearance::dark : Appearance::light;
}

std::optional<Appearance> schemeOf(GVariant* value) {
    GVariant* inner = g_variant_ref(value);
    while (g_variant_is_of_type(inner, G_VARIANT_TYPE_VARIANT) != FALSE) {
        GVariant* const next = g_variant_get_variant(inner);
        g_variant_unref(inner);
        inner = next;
    }
    std::optional<Appearance> scheme;
    if (g_variant_is_of_type(inner, G_VARIANT_TYPE_UINT32) != FALSE) {
        const guint32 number = g_variant_get_uint32(inner);
        if (number == 1) scheme = Appearance::dark;
        if (number == 2) scheme = Appearance::light;
    }
    g_variant_unref(inner);
    return scheme;
}

std::optional<Appearance> schemeOf(GSettings* settings) {
    const GlibText scheme(g_settings_get_string(settings, colourScheme));
    if (std::string_view(scheme.get()) == "prefer-dark") return Appearance::dark;
    if (std::string_view(scheme.get()) == "prefer-light") return Appearance::light;
    return std::nullopt;
}

/// Making settings of a schema that is not installed would end the program.
bool hasInterfaceSchema() {
    GSettingsSchemaSource* const source = g_settings_schema_source_get_default();
    if (source == nullptr) return false;
    GSettingsSchema* const schema = g_settings_schema_source_lookup(source, interfaceSchema, TRUE);
    if (schema == nullptr) return false;
    const bool found = g_settings_schema_has_key(schema, colourScheme) != FALSE;
    g_settings_schema_unref(schema);
    return found;
}

}  // namespace

DesktopAppearance::DesktopAppearance(Platform& platform, std::string memory)
    : platform_(platform),
      memory_(std::move(memory)),
      gtk_(gtk_settings_get_default()),
      asking_(g_cancellable_new()) {
    for (const char* property : {preferDark, themeName}) {
        g_signal_connect(gtk_, (std::string("notify::") + property).c_str(),
                         G_CALLBACK(&DesktopAppearance::gtkChanged), this);
    }
}

DesktopAppearance::~DesktopAppearance() {
    g_cancellable_cancel(asking_.get());
    if (portalSignal_ != 0) g_dbus_connection_signal_unsubscribe(bus_.get(), portalSignal_);
    if (interface_) g_signal_handlers_disconnect_by_data(interface_.get(), this);
    g_signal_handlers_disconnect_by_data(gtk_, this);
}

void DesktopAppearance::start(GDBusConnection* bus) {
    themeAppearance_ = gtkAppearance(gtk_);
    theme_ = currentTheme(gtk_);
    if (bus != nullptr) bus_.reset(G_DBUS_CONNECTION(g_object_ref(bus)));
    if (const auto appearance = remembered()) {
        chosen_ = true;
        apply(*appearance);
        return;
    }
    followDesktop();
}

void DesktopAppearance::followDesktop() {
    if (hasInterfaceSchema()) followInterfaceSettings();
    if (bus_) followPortal();
}

Appearance DesktopAppearance::current() const { return gtkAppearance(gtk_); }

void DesktopAppearance::choose(Appearance appearance) {
    chosen_ = true;
    apply(appearance);
    remember(appearance);
}

void DesktopAppearance::follow() {
    if (!chosen_) return;
    chosen_ = false;
    forget();
    g_object_set(gtk_, themeName, theme_.c_str(), nullptr);
    apply(themeAppearance_);
    followDesktop();
}

void DesktopAppearance::apply(Appearance appearance) {
    // A theme that is dark by its name stays dark whatever the program prefers.
    std::string theme = currentTheme(gtk_);
    if (appearance == Appearance::light && theme.ends_with(darkSuffix)) {
        theme.resize(theme.size() - darkSuffix.size());
        g_object_set(gtk_, themeName, theme.c_str(), nullptr);
    }
    g_object_set(gtk_, preferDark, appearance == Appearance::dark ? TRUE : FALSE, nullptr);
}

std::optional<Appearance> DesktopAppearance::remembered() const {
    if (!platform_.files->exists(memory_)) return std::nullopt;
    try {
        const std::string text = platform_.files->read(memory_, memoryLimit);
        if (text == "dark") return Appearance::dark;
        if (text == "light") return Appearance::light;
    } catch (const FileError& error) {
        platform_.log->line("Velto ▶ tema recordado: no se pudo leer: " + singleLine(error.what()));
    }
    return std::nullopt;
}

void DesktopAppearance::remember(Appearance appearance) {
    try {
        platform_.files->createFolders(parentFolder(memory_));
        platform_.files->writeAtomically(memory_,
                                         appearance == Appearance::dark ? "dark" : "light");
    } catch (const FileError& error) {
        // The next start may show another colour.
        platform_.log->line("Velto ▶ tema recordado: no se pudo guardar: " +
                            singleLine(error.what()));
    }
}

void DesktopAppearance::forget() {
    try {
        platform_.files->removeAll(memory_);
    } catch (const FileError& error) {
        platform_.log->line(singleLine(error.what()));  // the page says it again
    }
}

void DesktopAppearance::desktopPrefers(std::optional<Appearance> appearance) {
    if (!chosen_) apply(appearance.value_or(themeAppearance_));
}

void DesktopAppearance::followInterfaceSettings() {
    if (!interface_) {
        interface_.reset(g_settings_new(interfaceSchema));
        g_signal_connect(interface_.get(), "changed::color-scheme",
                         G_CALLBACK(&DesktopAppearance::interfaceChanged), this);
    }
    if (const auto scheme = schemeOf(interface_.get())) desktopPrefers(scheme);
}

void DesktopAppearance::followPortal() {
    if (portalSignal_ == 0) {
        portalSignal_ = g_dbus_connection_signal_subscribe(
            bus_.get(), portalName, portalSettings, "SettingChanged", portalPath,
            appearanceNamespace, G_DBUS_SIGNAL_FLAGS_NONE, &DesktopAppearance::portalChanged, this,
            nullptr);
    }
    constexpr int systemTimeout = -1;
    g_dbus_connection_call(bus_.get(), portalName, portalPath, portalSettings, "Read",
                           g_variant_new("(ss)", appearanceNamespace, colourScheme),
                           G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NONE, systemTimeout,
                           asking_.get(), &DesktopAppearance::portalAnswered, this);
}

void DesktopAppearance::gtkChanged(GtkSettings*, GParamSpec*, gpointer self) {
    const auto& observer = static_cast<DesktopAppearance*>(self)->observer_;
    if (observer) observer();
}

void DesktopAppearance::interfaceChanged(GSettings* settings, const char*, gpointer self) {
    static_cast<DesktopAppearance*>(self)->desktopPrefers(schemeOf(settings));
}

void DesktopAppearance::portalAnswered(GObject* bus, GAsyncResult* result, gpointer self) {
    GError* error = nullptr;
    GVariant* const answer = g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error);
    if (answer == nullptr) {
        // Cancelled (then `self` is gone), or a desktop without a portal: GTK's setting stands.
        const GlibError reason(error);
        return;
    }
    GVariant* const value = g_variant_get_child_value(answer, 0);
    if (const auto scheme = schemeOf(value)) {
        static_cast<DesktopAppearance*>(self)->desktopPrefers(scheme);
    }
    g_variant_unref(value);
    g_variant_unref(answer);
}

void DesktopAppearance::portalChanged(GDBusConnection*, const char*, const char*, const char*,
                                      const char*, GVariant* parameters, gpointer self) {
    if (g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ssv)")) == FALSE) return;
    const char* key = nullptr;
    GVariant* value = nullptr;
    g_variant_get(parameters, "(&s&sv)", nullptr, &key, &value);
    if (std::string_view(key) == colourScheme) {
        static_cast<DesktopAppearance*>(self)->desktopPrefers(schemeOf(value));
    }
    g_variant_unref(value);
}

}  // namespace velto::window
