#include "platform/linux/icon_worker/draw_picture.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include "platform/linux/glib_pointers.h"

namespace velto {
namespace {

constexpr int mostPixels = 4096;  // of a side of a picture

/// Called before anything is decoded: a drawing is made at the size wanted, whatever it says of
/// itself, and a picture that claims to be larger than any icon is not decoded.
void prepare(GdkPixbufLoader* loader, int width, int height, gpointer pixels) {
    GdkPixbufFormat* const format = gdk_pixbuf_loader_get_format(loader);
    if (format != nullptr && gdk_pixbuf_format_is_scalable(format) != FALSE) {
        const int size = GPOINTER_TO_INT(pixels);
        gdk_pixbuf_loader_set_size(loader, size, size);
    } else if (width > mostPixels || height > mostPixels) {
        gdk_pixbuf_loader_set_size(loader, 0, 0);
    }
}

GlibReference<GdkPixbuf> decode(std::string_view bytes, int pixels) {
    const GlibReference<GdkPixbufLoader> loader(gdk_pixbuf_loader_new());
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(prepare), GINT_TO_POINTER(pixels));
    // Closed in any case, as a loader must be; a failure of either leaves no whole picture.
    const bool isRead =
        gdk_pixbuf_loader_write(loader.get(), reinterpret_cast<const guchar*>(bytes.data()),
                                bytes.size(), nullptr) != FALSE;
    const bool isWhole = gdk_pixbuf_loader_close(loader.get(), nullptr) != FALSE;
    GdkPixbuf* const picture = gdk_pixbuf_loader_get_pixbuf(loader.get());
    if (!isRead || !isWhole || picture == nullptr) return nullptr;
    return GlibReference<GdkPixbuf>(GDK_PIXBUF(g_object_ref(picture)));
}

}  // namespace

std::string drawPicture(std::string_view file, int pixels) {
    const auto picture = decode(file, pixels);
    if (!picture) return {};
    const GlibReference<GdkPixbuf> scaled(
        gdk_pixbuf_scale_simple(picture.get(), pixels, pixels, GDK_INTERP_BILINEAR));
    char* buffer = nullptr;
    gsize size = 0;
    if (!scaled ||
        gdk_pixbuf_save_to_buffer(scaled.get(), &buffer, &size, "png", nullptr, nullptr) == FALSE) {
        return {};
    }
    const GlibText png(buffer);
    return {buffer, size};
}

}  // namespace velto
