#pragma once

#include "platform/TaskBar.h"

// GIO's own name for it, whose header is not for those who include this.
using GDBusConnection = struct _GDBusConnection;  // NOLINT(bugprone-reserved-identifier)

namespace velto {

/// The program's launcher in docks and task bars that listen on the session bus for the signal
/// com.canonical.Unity.LauncherEntry.Update, as Ubuntu's and KDE's do
/// (https://wiki.ubuntu.com/Unity/LauncherAPI). They know a launcher by its desktop entry.
class LauncherEntry final : public TaskBar {
public:
    /// Null where there is no session bus; it outlives the object else.
    explicit LauncherEntry(GDBusConnection* bus) : bus_(bus) {}

    void showProgress(std::optional<double> fraction) override { tell(fraction.value_or(0), true); }
    void hideProgress() override { tell(0, false); }

private:
    void tell(double fraction, bool isVisible);

    GDBusConnection* bus_;
};

}  // namespace velto
