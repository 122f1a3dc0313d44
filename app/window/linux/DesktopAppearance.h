#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/window/linux/gtk.h"
#include "platform/ApplicationShell.h"
#include "platform/Platform.h"

namespace velto::window {

/// Light or dark: the desktop's choice until the page makes one. GTK and the web engine (with it
/// the page's `prefers-color-scheme`) follow through GTK's settings. Main thread, with GTK running.
class DesktopAppearance {
public:
    /// `memory` is the file that keeps the page's choice, so that the next window has its colour
    /// before the page can say it. It stands with the page's own data and goes with it.
    DesktopAppearance(Platform& platform, std::string memory);
    ~DesktopAppearance();
    DesktopAppearance(const DesktopAppearance&) = delete;
    DesktopAppearance& operator=(const DesktopAppearance&) = delete;

    /// Asks the desktop, and follows it from then on. `bus` may be null. The desktop portal's
    /// answer comes later.
    void start(GDBusConnection* bus);

    Appearance current() const;

    /// What the user has chosen in the page; the desktop is not followed any more.
    void choose(Appearance appearance);

    /// The user wants the desktop's again.
    void follow();

    /// Called whenever `current` may have changed.
    void onChange(std::function<void()> observer) { observer_ = std::move(observer); }

private:
    static void gtkChanged(GtkSettings*, GParamSpec*, gpointer self);
    static void interfaceChanged(GSettings*, const char*, gpointer self);
    static void portalAnswered(GObject* bus, GAsyncResult* result, gpointer self);
    static void portalChanged(GDBusConnection*, const char*, const char*, const char*, const char*,
                              GVariant* parameters, gpointer self);

    std::optional<Appearance> remembered() const;
    void remember(Appearance appearance);
    void forget();
    void followDesktop();
    void followInterfaceSettings();
    void followPortal();
    void desktopPrefers(std::optional<Appearance> appearance);
    void apply(Appearance appearance);

    Platform& platform_;
    std::string memory_;
    GtkSettings* gtk_;
    bool chosen_ = false;
    std::function<void()> observer_;

    // Where the desktop states no preference, and what says so.
    Appearance themeAppearance_ = Appearance::light;
    std::string theme_;
    GlibReference<GSettings> interface_;
    GlibReference<GDBusConnection> bus_;
    GlibReference<GCancellable> asking_;
    guint portalSignal_ = 0;
};

}  // namespace velto::window
