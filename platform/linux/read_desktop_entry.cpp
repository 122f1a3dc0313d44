#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/DesktopEntry.h"
#include "platform/linux/glib_pointers.h"
#include "platform/linux/launchers.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/foreign_file.h"
#include "platform/values/text.h"

namespace velto {
namespace {

struct FreeTexts {
    void operator()(char** texts) const { g_strfreev(texts); }
};
using GlibTexts = std::unique_ptr<char*, FreeTexts>;

// Of an entry. One with all its translations and actions has some ten thousand.
constexpr std::size_t mostBytes = 256 * 1024;

struct FreeKeyFile {
    void operator()(GKeyFile* file) const { g_key_file_unref(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, FreeKeyFile>;

std::string text(GDesktopAppInfo* information, const char* key) {
    const GlibText value(g_desktop_app_info_get_string(information, key));
    return value ? validUtf8(value.get()) : std::string();
}

struct Command {
    std::string program;                 // empty when there is none
    std::vector<std::string> arguments;  // literal ones
};

std::string resolvedOrSame(const char* path) {
    try {
        return PosixFileManager().resolved(path);
    } catch (const FileError&) {
        return path;
    }
}

/// True for "%U" and its like, and for Flatpak's marks around them ("@@u", "@@").
bool standsForFiles(std::string_view argument) {
    return (argument.size() == 2 && argument.front() == '%' && argument != "%%") ||
           (argument.starts_with("@@") && argument.size() <= 3);
}

/// Where the command of `env` begins: past its options and assignments (env(1)). 0: it has none.
int pastEnv(char** words, int count) {
    int index = 1;
    for (; index < count; ++index) {
        const std::string_view word = words[index];
        const bool isOption = word.starts_with('-');
        if (!isOption && word.find('=') == std::string_view::npos) return index;
        // Those that take a word of their own.
        if (word == "-u" || word == "-C" || word == "--unset" || word == "--chdir") ++index;
    }
    return 0;
}

/// A command line, past `env` and its assignments.
Command commandOf(const char* commandLine) {
    int count = 0;
    char** parsed = nullptr;
    if (commandLine == nullptr ||
        g_shell_parse_argv(commandLine, &count, &parsed, nullptr) == FALSE) {
        return {};
    }
    const GlibTexts arguments(parsed);
    int index = 0;
    if (lastPathComponent(parsed[0]) == "env") index = pastEnv(parsed, count);
    const GlibText found(g_find_program_in_path(parsed[index]));
    if (!found) return {};
    Command command{.program = resolvedOrSame(found.get()), .arguments = {}};
    while (++index < count) {
        if (!standsForFiles(parsed[index])) command.arguments.push_back(validUtf8(parsed[index]));
    }
    return command;
}

/// What an interpreter runs. Relative paths depend on where the desktop starts it.
std::string scriptOf(const Command& command) {
    if (!isInterpreter(lastPathComponent(command.program))) return {};
    const auto script = std::ranges::find_if(
        command.arguments, [](const std::string& argument) { return argument.starts_with('/'); });
    return script == command.arguments.end() ? std::string() : resolvedOrSame(script->c_str());
}

/// Read here and not by GIO, which waits for whatever is at the path to be written.
GlibReference<GDesktopAppInfo> entryIn(const std::string& path) {
    const auto text = readForeignFile(path, mostBytes);
    if (!text) return nullptr;
    const KeyFile keys(g_key_file_new());
    if (g_key_file_load_from_data(keys.get(), text->data(), text->size(), G_KEY_FILE_NONE,
                                  nullptr) == FALSE) {
        return nullptr;
    }
    return GlibReference<GDesktopAppInfo>(g_desktop_app_info_new_from_keyfile(keys.get()));
}

std::string iconOf(GAppInfo* information) {
    GIcon* const icon = g_app_info_get_icon(information);
    if (icon == nullptr) return {};
    const GlibText name(g_icon_to_string(icon));  // a name, or a path
    return name ? std::string(name.get()) : std::string();
}

}  // namespace

std::optional<DesktopEntry> readDesktopEntry(const std::string& path) {
    const GlibReference<GDesktopAppInfo> entry = entryIn(path);
    if (!entry || g_desktop_app_info_get_is_hidden(entry.get()) != FALSE) return std::nullopt;
    GAppInfo* const information = G_APP_INFO(entry.get());
    DesktopEntry read;
    if (const char* name = g_app_info_get_display_name(information)) read.name = validUtf8(name);
    Command command = commandOf(g_app_info_get_commandline(information));
    if (command.program.empty()) return std::nullopt;
    read.script = scriptOf(command);
    read.executable = std::move(command.program);
    read.arguments = std::move(command.arguments);
    read.icon = iconOf(information);
    read.version = text(entry.get(), "X-AppImage-Version");
    read.flatpak = text(entry.get(), "X-Flatpak");
    read.snap = text(entry.get(), "X-SnapInstanceName");
    read.isShown = g_app_info_should_show(information) != FALSE;
    read.startsScript = isLauncher(lastPathComponent(read.executable));
    return read;
}

}  // namespace velto
