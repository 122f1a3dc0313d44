#include "uninstall/common_words.h"

#include <algorithm>
#include <array>

#include "platform/values/text.h"
#include "uninstall/tool_names.h"
#include "uninstall/words.h"

namespace velto {
namespace {

// Names of applications that desktops ship, and of folders that people make, in one list: what is
// on either side of a comparison counts.
constexpr auto commonWords = std::to_array<std::string_view>({
    "accessibility", "account",     "accounts",    "activities", "alarm",         "apps",
    "archive",       "archiver",    "archives",    "art",        "audio",         "autostart",
    "background",    "backgrounds", "backup",      "backups",    "bin",           "book",
    "bookmarks",     "books",       "boxes",       "browser",    "build",         "cache",
    "calculator",    "calendar",    "calendars",   "camera",     "certs",         "characters",
    "chat",          "chess",       "clipboard",   "clock",      "clocks",        "code",
    "color",         "common",      "compiler",    "config",     "configuration", "connections",
    "console",       "contact",     "contacts",    "data",       "database",      "databases",
    "date",          "debug",       "default",     "defaults",   "design",        "dev",
    "develop",       "dictionary",  "disk",        "disks",      "display",       "displays",
    "doc",           "docs",        "document",    "download",   "draw",          "drawing",
    "editor",        "email",       "environment", "evolution",  "examples",      "extensions",
    "feeds",         "file",        "files",       "finance",    "firmware",      "flatpak",
    "folder",        "folders",     "font",        "fonts",      "game",          "games",
    "git",           "gnome",       "graphics",    "gtk",        "hardware",      "health",
    "help",          "history",     "icons",       "image",      "images",        "inbox",
    "include",       "input",       "install",     "installer",  "java",          "journal",
    "kde",           "key",         "keyboard",    "keyring",    "keyrings",      "keys",
    "language",      "launcher",    "learn",       "lib",        "libraries",     "linux",
    "local",         "locale",      "lock",        "log",        "login",         "logs",
    "mail",          "mails",       "map",         "maps",       "math",          "media",
    "menu",          "menus",       "message",     "messages",   "messenger",     "metadata",
    "mime",          "mines",       "money",       "monitor",    "monitors",      "mouse",
    "movie",         "network",     "networks",    "news",       "node",          "note",
    "notebook",      "notes",       "office",      "online",     "opt",           "package",
    "packages",      "paint",       "passwords",   "people",     "perl",          "phone",
    "photo",         "photos",      "picture",     "pictures",   "pim",           "places",
    "plasma",        "player",      "podcasts",    "portable",   "power",         "preferences",
    "print",         "printers",    "privacy",     "private",    "profile",       "profiles",
    "program",       "programs",    "project",     "projects",   "python",        "qt",
    "radio",         "recent",      "recipes",     "recorder",   "remote",        "repos",
    "root",          "run",         "scan",        "scanner",    "school",        "science",
    "screen",        "screenshot",  "screenshots", "script",     "scripts",       "search",
    "secrets",       "security",    "server",      "service",    "services",      "session",
    "sessions",      "settings",    "setup",       "share",      "shell",         "shopping",
    "shortcuts",     "snap",        "software",    "sound",      "sounds",        "source",
    "sources",       "src",         "start",       "state",      "store",         "sync",
    "systemd",       "task",        "tasks",       "temp",       "templates",     "terminal",
    "test",          "tests",       "text",        "theme",      "themes",        "thumbnails",
    "time",          "tmp",         "todo",        "tour",       "translate",     "translator",
    "trash",         "tweaks",      "update",      "updates",    "upgrade",       "usage",
    "user",          "usr",         "utils",       "vault",      "video",         "videos",
    "viewer",        "virtual",     "voice",       "wallet",     "wallpaper",     "wallpapers",
    "weather",       "web",         "welcome",     "window",     "windows",       "wine",
    "work",          "workspace",   "world",       "writer",     "xdg",           "xorg",
});
static_assert(std::ranges::is_sorted(commonWords));

bool isDigitOrDot(char character) {
    return (character >= '0' && character <= '9') || character == '.';
}

}  // namespace

bool isCommonWord(std::string_view name) {
    const std::string word = lowerCasedAscii(name);
    return std::ranges::binary_search(commonWords, std::string_view(word)) ||
           isGenericInAnyCase(name);
}

bool isOwnIdentifier(std::string_view identifier) {
    if (!isEntryName(identifier) || identifier.starts_with('.')) return false;
    return isFlatpakIdentifier(identifier) ||
           (length(identifier) >= 3 && !isCommonWord(identifier));
}

std::string comparable(std::string_view name, const Locale& locale) {
    std::string_view words = trimmed(name);
    // A version: digits and full stops after a separator, or at the end of a word.
    while (!words.empty() && isDigitOrDot(words.back()))
        words.remove_suffix(1);
    if (words.empty()) words = trimmed(name);
    std::string together;
    for (std::string_view piece : namePieces(words))
        together += locale.lowerCased(piece);
    return together;
}

}  // namespace velto
