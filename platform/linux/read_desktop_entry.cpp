#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <array>

#include "platform/DesktopEntry.h"
#include "platform/linux/glib_pointers.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/values/text.h"

namespace velto {
namespace {

struct FreeTexts {
    void operator()(char** texts) const { g_strfreev(texts); }
};
using GlibTexts = std::unique_ptr<char*, FreeTexts>;

struct FreeKeyFile {
    void operator()(GKeyFile* file) const { g_key_file_unref(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, FreeKeyFile>;

// Programs that stand for whatever they are told to run.
constexpr std::array<std::string_view, 12> launchers{"env",  "sh",      "bash", "dash",
                                                     "zsh",  "perl",    "java", "gjs",
                                                     "wine", "flatpak", "snap", "xdg-open"};
constexpr std::array<std::string_view, 3> versionedLaunchers{"python", "ruby", "electron"};

bool isLauncher(std::string_view name) {
    for (std::string_view one : launchers) {
        if (name == one) return true;
    }
    for (std::string_view one : versionedLaunchers) {
        if (name.starts_with(one)) return true;
    }
    return false;
}

std::string text(GDesktopAppInfo* information, const char* key) {
    const GlibText value(g_desktop_app_info_get_string(information, key));
    return value ? validUtf8(value.get()) : std::string();
}

/// The program of a command line, past `env` and its assignments; empty when there is none.
std::string programOf(const char* commandLine) {
    int count = 0;
    char** parsed = nullptr;
    if (commandLine == nullptr ||
        g_shell_parse_argv(commandLine, &count, &parsed, nullptr) == FALSE) {
        return {};
    }
    const GlibTexts arguments(parsed);
    int index = 0;
    if (lastPathComponent(parsed[0]) == "env") {
        ++index;
        while (index < count && std::string_view(parsed[index]).find('=') != std::string::npos)
            ++index;
        if (index == count) index = 0;
    }
    const GlibText found(g_find_program_in_path(parsed[index]));
    if (!found) return {};
    try {
        return PosixFileManager().resolved(found.get());
    } catch (const FileError&) {
        return found.get();
    }
}

std::string iconOf(GAppInfo* information) {
    GIcon* const icon = g_app_info_get_icon(information);
    if (icon == nullptr) return {};
    const GlibText name(g_icon_to_string(icon));  // a name, or a path
    return name ? std::string(name.get()) : std::string();
}

/// GLib would wait for a pipe in the place of an entry, and read a device without end.
GlibReference<GDesktopAppInfo> loadEntry(const std::string& path) {
    std::string content;
    try {
        content = PosixFileManager().read(path, anyFile(1 << 20));
    } catch (const FileError&) {
        return nullptr;  // taken away, or nothing to read
    }
    const KeyFile file(g_key_file_new());
    if (g_key_file_load_from_data(file.get(), content.data(), content.size(), G_KEY_FILE_NONE,
                                  nullptr) == FALSE) {
        return nullptr;
    }
    return GlibReference<GDesktopAppInfo>(g_desktop_app_info_new_from_keyfile(file.get()));
}

}  // namespace

std::optional<DesktopEntry> readDesktopEntry(const std::string& path) {
    const GlibReference<GDesktopAppInfo> entry = loadEntry(path);
    if (!entry || g_desktop_app_info_get_is_hidden(entry.get()) != FALSE) return std::nullopt;
    GAppInfo* const information = G_APP_INFO(entry.get());
    DesktopEntry read;
    if (const char* name = g_app_info_get_display_name(information)) read.name = validUtf8(name);
    read.executable = programOf(g_app_info_get_commandline(information));
    if (read.executable.empty()) return std::nullopt;
    read.icon = iconOf(information);
    read.version = text(entry.get(), "X-AppImage-Version");
    read.flatpak = text(entry.get(), "X-Flatpak");
    read.isSnap = !text(entry.get(), "X-SnapInstanceName").empty();
    read.isShown = g_app_info_should_show(information) != FALSE;
    read.startsScript = isLauncher(lastPathComponent(read.executable));
    return read;
}

}  // namespace velto
