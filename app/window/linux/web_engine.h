#pragma once

#include <optional>
#include <string>

#include "app/window/linux/gtk.h"
#include "platform/Platform.h"

namespace velto::window {

/// Sets what GTK and the web engine read from the environment. Before GTK starts, and before there
/// are other threads that read it.
void prepareEnvironment(Platform& platform);

/// The folder inside the data folder where the web engine keeps what it stores for the page; no
/// walk goes there, and a reset takes it along.
std::string webDataFolder(const Platform& platform);

/// Where the engine keeps its data; one per process. It has no way to the network, and nothing is
/// downloaded into it. It also sets the engine's process for files
/// and network going, which then comes up beside GTK: every page load waits for it. Does not need
/// GTK.
GlibReference<WebKitNetworkSession> makeSession(const Platform& platform);

/// Names a language to the page where the machine names none. Before there is a web view.
void nameLanguage(const Platform& platform);

/// The resource bundle's folder, links resolved: beside the program, or where an installation puts
/// it; nothing when there is none.
std::optional<std::string> bundleFolder(const Platform& platform);

}  // namespace velto::window
