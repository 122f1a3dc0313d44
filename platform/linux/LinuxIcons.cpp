#include "platform/linux/LinuxIcons.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <cstdint>

#include "platform/DesktopEntry.h"
#include "platform/linux/glib_pointers.h"
#include "platform/values/PropertyList.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr ReadLimit limit = anyFile(32 << 20);  // of an icon file or a property list
constexpr std::int64_t mostPixels = 4096;       // a side

/// A picture that claims to be larger than any icon is not decoded.
void refuseHuge(GdkPixbufLoader* loader, int width, int height, gpointer) {
    if (width > mostPixels || height > mostPixels) gdk_pixbuf_loader_set_size(loader, 0, 0);
}

GlibReference<GdkPixbuf> decode(std::string_view bytes) {
    const GlibReference<GdkPixbufLoader> loader(gdk_pixbuf_loader_new());
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(refuseHuge), nullptr);
    // Closed in any case, as a loader must be; a failure of either leaves no whole picture.
    const bool isRead =
        gdk_pixbuf_loader_write(loader.get(), reinterpret_cast<const guchar*>(bytes.data()),
                                bytes.size(), nullptr) != FALSE;
    const bool isWhole = gdk_pixbuf_loader_close(loader.get(), nullptr) != FALSE;
    GdkPixbuf* const picture = gdk_pixbuf_loader_get_pixbuf(loader.get());
    if (!isRead || !isWhole || picture == nullptr) return nullptr;
    return GlibReference<GdkPixbuf>(GDK_PIXBUF(g_object_ref(picture)));
}

std::optional<std::string> dataURL(GdkPixbuf* picture, int pixels) {
    const GlibReference<GdkPixbuf> scaled(
        gdk_pixbuf_scale_simple(picture, pixels, pixels, GDK_INTERP_BILINEAR));
    if (!scaled) return std::nullopt;
    char* buffer = nullptr;
    gsize size = 0;
    if (gdk_pixbuf_save_to_buffer(scaled.get(), &buffer, &size, "png", nullptr, nullptr) == FALSE) {
        return std::nullopt;
    }
    const GlibText png(buffer);
    const GlibText text(g_base64_encode(reinterpret_cast<const guchar*>(buffer), size));
    return "data:image/png;base64," + std::string(text.get());
}

}  // namespace

std::optional<std::string> LinuxIcons::pngDataURL(const std::string& path, int pixels) {
    if (pixels <= 0) return std::nullopt;
    const std::string file = iconFile(path);
    if (file.empty()) return std::nullopt;
    const auto bytes = content(file);
    if (!bytes) return std::nullopt;
    const std::string_view png = pngInIconFile(*bytes, pixels);
    const auto picture = decode(png.empty() ? std::string_view(*bytes) : png);
    return picture ? dataURL(picture.get(), pixels) : std::nullopt;
}

/// Where the picture for `path` is; empty when it has none.
std::string LinuxIcons::iconFile(const std::string& path) const {
    if (path.ends_with(desktopEntryExtension)) {
        const auto entry = readDesktopEntry(path);
        return entry ? desktopIconFile(files_, entries_, entry->icon) : std::string();
    }
    const auto attributes = files_.attributes(path);
    if (!attributes) return {};
    if (attributes->kind != FileKind::folder) return path;
    const auto information = content(path + "/Contents/Info.plist");
    const auto list = information ? readPropertyList(*information) : std::nullopt;
    const std::string* const name = list ? list->text("CFBundleIconFile") : nullptr;
    // A name, and not a path that leads out of the bundle.
    if (name == nullptr || name->empty() || name->find('/') != std::string::npos) return {};
    const bool hasExtension = lowerCaseExtension(*name) == "icns";
    return path + "/Contents/Resources/" + *name + (hasExtension ? "" : ".icns");
}

std::optional<std::string> LinuxIcons::content(const std::string& path) const {
    try {
        return files_.read(path, limit);
    } catch (const FileError&) {
        return std::nullopt;  // an application without a picture is shown without one
    }
}

}  // namespace velto
