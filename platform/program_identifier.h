#pragma once

namespace velto {

/// The program's fixed identifier, "app.velto" unless the build was told another (VELTO_APP_ID):
/// its name on the session bus and for its windows, and that of its desktop entry, icon and units
/// of systemd. Used on a Mac where the program runs without a bundle of its own.
extern const char* const programIdentifier;

}  // namespace velto
