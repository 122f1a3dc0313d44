#include "platform/linux/LinuxIcons.h"

#include <glib.h>

#include <cstddef>

#include "platform/DesktopEntry.h"
#include "platform/icon_theme.h"
#include "platform/linux/glib_pointers.h"
#include "platform/linux/icon_protocol.h"
#include "platform/posix/foreign_file.h"
#include "platform/values/PropertyList.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::size_t longestDrawing = 1024 * 1024;  // bytes of text: larger ones draw no icon

/// Drawings are programs, more or less: what they cost has little to do with their size.
bool isDrawing(std::string_view file) {
    const std::string_view head = file.substr(0, 4096);
    return head.find("<svg") != std::string_view::npos || file.starts_with("<?xml") ||
           file.starts_with("\x1f\x8b");  // a compressed one
}

std::string dataURL(std::string_view png) {
    const GlibText text(g_base64_encode(reinterpret_cast<const guchar*>(png.data()), png.size()));
    return "data:image/png;base64," + std::string(text.get());
}

}  // namespace

std::optional<std::string> LinuxIcons::pngDataURL(const std::string& path, int pixels) {
    if (pixels <= 0) return std::nullopt;
    const std::string file = iconFile(path, pixels);
    if (file.empty()) return std::nullopt;
    const auto bytes = readForeignFile(file, longestPicture);
    if (!bytes || (isDrawing(*bytes) && bytes->size() > longestDrawing)) return std::nullopt;
    const std::string_view inside = pngInIconFile(*bytes, pixels);
    const auto png = workers_.png(inside.empty() ? std::string_view(*bytes) : inside, pixels);
    return png ? std::optional(dataURL(*png)) : std::nullopt;
}

/// Of an icon as a desktop entry names it.
std::string LinuxIcons::pictureOf(const std::string& icon, int pixels) {
    std::call_once(isThemeKnown_, [this] { theme_ = themeName_ ? themeName_() : std::string(); });
    if (!theme_.empty()) {
        std::vector<std::string> folders;
        folders.reserve(entries_.size());
        for (const NamedLocation& entries : entries_)
            folders.push_back(parentFolder(entries.path).append("/icons"));
        std::string file = themedIconFile(files_, folders, theme_, icon, pixels);
        if (!file.empty()) return file;
    }
    return desktopIconFile(files_, entries_, icon);
}

/// Where the picture for `path` is; empty when it has none.
std::string LinuxIcons::iconFile(const std::string& path, int pixels) {
    if (path.ends_with(desktopEntryExtension)) {
        const auto entry = readDesktopEntry(path);
        return entry ? pictureOf(entry->icon, pixels) : std::string();
    }
    const auto attributes = files_.attributes(path);
    if (!attributes) return {};
    if (attributes->kind != FileKind::folder) return path;
    const auto information = readForeignFile(path + "/Contents/Info.plist", longestPropertyList);
    const auto list = information ? readPropertyList(*information) : std::nullopt;
    const std::string* const name = list ? list->text("CFBundleIconFile") : nullptr;
    // A name, and not a path that leads out of the bundle.
    if (name == nullptr || name->empty() || name->find('/') != std::string::npos) return {};
    const bool hasExtension = lowerCaseExtension(*name) == "icns";
    return path + "/Contents/Resources/" + *name + (hasExtension ? "" : ".icns");
}

}  // namespace velto
