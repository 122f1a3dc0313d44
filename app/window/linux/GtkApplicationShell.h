#pragma once

#include <functional>
#include <string>

#include "app/window/linux/DesktopAppearance.h"
#include "app/window/linux/gtk.h"
#include "platform/ApplicationShell.h"

namespace velto::window {

/// The running application on GTK. Main thread.
class GtkApplicationShell final : public ApplicationShell {
public:
    GtkApplicationShell(GtkApplication* application, DesktopAppearance& appearance)
        : application_(application), appearance_(appearance) {}

    void activate() override;
    Appearance appearance() const override { return appearance_.current(); }
    void setAppearance(Appearance appearance) override { appearance_.choose(appearance); }
    void keepAppearance() override { appearance_.choose(appearance_.current()); }
    void followSystemAppearance() override { appearance_.follow(); }
    void confirm(const Confirmation& question, std::function<void(bool)> answer) override;
    void chooseFolder(const FolderQuestion& question, FolderAnswer answer) override;

private:
    GtkApplication* application_;
    DesktopAppearance& appearance_;
};

}  // namespace velto::window
